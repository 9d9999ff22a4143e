#pragma once

#include <QDialog>

#include <memory>

namespace oblino {

namespace Ui {
class ViewControllerEnhancement;
}

/// The browser panel: shows the start page, a short guide to the program.
class ViewControllerEnhancement : public QDialog
{
    Q_OBJECT

public:
    explicit ViewControllerEnhancement(QWidget *parent = nullptr);
    ~ViewControllerEnhancement() override;

private:
    void viewDidLoad();

    std::unique_ptr<Ui::ViewControllerEnhancement> m_ui;
};

} // namespace oblino
