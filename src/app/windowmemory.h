#pragma once

#include <QObject>

class QWidget;

namespace oblino {

class Defaults;

/// Keeps size and place of the program's own windows in the settings, a text a kind of window, and brings
/// them back, wholly on a screen, when such a window is shown. As an event filter of the application; no
/// window knows of it.
class WindowMemory : public QObject
{
    Q_OBJECT

public:
    explicit WindowMemory(Defaults &settings, QObject *parent = nullptr);

    /// Takes down where every window is that can be seen.
    void rememberAll();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void bringBack(QWidget &window);
    void remember(const QWidget &window);

    Defaults &m_settings;
};

} // namespace oblino
