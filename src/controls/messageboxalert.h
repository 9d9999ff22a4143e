#pragma once

#include <base/alert.h>

namespace oblino {

/// Asks with a message box over the active window.
class MessageBoxAlert : public Alert
{
public:
    [[nodiscard]] std::optional<int> ask(const Question &question) override;
};

} // namespace oblino
