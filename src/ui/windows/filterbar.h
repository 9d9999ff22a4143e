#pragma once

#include <core/taskfilter.h>

#include <QWidget>

#include <memory>

class QComboBox;

namespace oblino {

namespace Ui {
class FilterBar;
}

/// A bar in which one chooses what of a view is to be seen. It decides nothing about tasks.
class FilterBar : public QWidget
{
    Q_OBJECT

public:
    explicit FilterBar(QWidget *parent = nullptr);
    ~FilterBar() override;

    /// The names to choose from; a name that is chosen already stays.
    void setNames(const QStringList &clients, const QStringList &teamMembers);
    /// Shows a filter; tells nobody.
    void setFilter(const TaskFilter &filter);
    [[nodiscard]] TaskFilter filter() const;
    /// Says how many tasks of how many are seen.
    void setCounts(qsizetype shown, qsizetype all);

Q_SIGNALS:
    void filterChanged();
    /// The filter is to be kept under a name.
    void keepRequested();
    /// The bar is to go, and everything to be seen again.
    void dropped();

protected:
    void keyPressEvent(QKeyEvent *event) override;

private:
    void tell();

    std::unique_ptr<Ui::FilterBar> m_ui;
    bool m_isSetting = false;
};

} // namespace oblino
