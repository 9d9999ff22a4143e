#pragma once

#include <QApplication>
#include <QEvent>
#include <QHash>
#include <QWidget>

#include <chrono>
#include <functional>

namespace oblino::bench {

/// An application that notes when its widgets have handled a paint event.
class PaintWatch : public QApplication
{
public:
    using QApplication::QApplication;

    /// How long it takes from the start of `act` until the widget that it returns has painted, in
    /// milliseconds.
    double untilPainted(const std::function<const QWidget *()> &act)
    {
        using namespace std::chrono_literals;
        processEvents();
        m_painted.clear();
        const auto begin = Clock::now();
        const QWidget *widget = act();
        while (!m_painted.contains(widget)) {
            if (Clock::now() > begin + 10s)
                qFatal("the widget was not painted");
            processEvents();
        }
        return std::chrono::duration<double, std::milli>(m_painted.value(widget) - begin).count();
    }

    bool notify(QObject *receiver, QEvent *event) override
    {
        const bool accepted = QApplication::notify(receiver, event);
        if (event->type() == QEvent::Paint && !m_painted.contains(receiver))
            m_painted.insert(receiver, Clock::now());
        return accepted;
    }

private:
    using Clock = std::chrono::steady_clock;

    QHash<const QObject *, Clock::time_point> m_painted; // for the first time since untilPainted() began
};

} // namespace oblino::bench
