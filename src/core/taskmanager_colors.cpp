#include <core/taskmanager.h>

#include <platform/appearance.h>
#include <platform/colorwell.h>
#include <platform/textview.h>

namespace oblino {

namespace {

constexpr Color white(1, 1, 1, 1);
constexpr Color black(0, 0, 0, 1);

} // namespace

bool TaskManager::inDarkMode() const
{
    return m_appearance.text(QStringLiteral("AppleInterfaceStyle")) == QStringLiteral("Dark");
}

void TaskManager::changeColor(ColorWell &colorWell, TextView &descriptionColor) const
{
    colorWell.setColor(inDarkMode() ? black : white);
    descriptionColor.setTextColor(inDarkMode() ? white : black);
}

void TaskManager::invertColorWheeel(ColorWell &colorWell, TextView &descriptionColor) const
{
    colorWell.setColor(colorWell.color().inverted());
    descriptionColor.setTextColor(inDarkMode() ? white : black);
}

void TaskManager::invertColors()
{
    for (task &t : selectedList())
        t.color = t.color.inverted();
}

} // namespace oblino
