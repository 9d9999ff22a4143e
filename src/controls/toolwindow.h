#pragma once

#include <QDialog>
#include <QSize>

namespace oblino {

enum class DataKind;

/// A window beside the main one. What becomes of it reaches a window as its life cycle, however it is opened
/// or closed; to be minimised and brought back is none of it.
class ToolWindow : public QDialog
{
    Q_OBJECT

public:
    /// @param leastSize  in pixels, which is kept to where the screen has room for it; empty for any size
    explicit ToolWindow(QWidget *parent, QSize leastSize = {});

    /// All data of a kind is gone: what the window holds of it must not come back with a later save. A window
    /// that nobody sees may go as well.
    virtual void dataErased(DataKind /*kind*/) {}
    /// An earlier version has taken the place of what the file of that kind held.
    virtual void dataRestored(DataKind /*kind*/) {}

    /// Goes away, unless windowShouldClose() does not have it.
    void reject() override;

protected:
    virtual void viewWillAppear() {}
    virtual void viewDidAppear() {}
    virtual void viewWillDisappear() {}
    virtual void viewDidDisappear() {}
    /// Whether the user may close it at this moment.
    [[nodiscard]] virtual bool windowShouldClose() { return true; }

    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    QSize m_leastSize;
};

} // namespace oblino
