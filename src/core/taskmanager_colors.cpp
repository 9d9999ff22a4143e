#include <core/taskmanager.h>

#include <base/appearance.h>
#include <base/colorwell.h>
#include <base/textview.h>

namespace oblino {

namespace {

constexpr Color white(1, 1, 1, 1);
constexpr Color black(0, 0, 0, 1);

} // namespace

bool TaskManager::inDarkMode() const
{
    return m_appearance.text(QStringLiteral("AppleInterfaceStyle")) == QStringLiteral("Dark");
}

Color TaskManager::neutralColor() const
{
    return inDarkMode() ? black : white;
}

Color TaskManager::textColor() const
{
    return inDarkMode() ? white : black;
}

void TaskManager::changeColor(ColorWell &colorWell, TextView &descriptionColor) const
{
    colorWell.setColor(neutralColor());
    descriptionColor.setTextColor(textColor());
}

void TaskManager::invertColorWheeel(ColorWell &colorWell, TextView &descriptionColor) const
{
    colorWell.setColor(colorWell.color().inverted());
    descriptionColor.setTextColor(textColor());
}

void TaskManager::invertColors()
{
    m_list.invertColors();
}

} // namespace oblino
