#pragma once

#include <base/color.h>
#include <tools/boardhistory.h>
#include <tools/whiteboardfile.h>
#include <tools/windows/filewindow.h>

#include <QDir>
#include <QPainterPath>

#include <memory>
#include <optional>

namespace oblino {

namespace Ui {
class ViewControllerWhiteboard;
}

class SharingPicker;
class UIUtil;

/// The whiteboard: freehand sketches in a window of fixed size. The picture lies in one PNG file of the
/// working folder, into which every stroke goes as it ends. What was done since the window was shown can be
/// undone and redone.
class ViewControllerWhiteboard final : public FileWindow
{
    Q_OBJECT

public:
    class Line;

    /// The drawing settings. They last as long as the process.
    struct GlobalVariable
    {
        static inline Color colorWell = {0, 0, 0, 1}; ///< of the stroke
        static inline double lineWidth = 5;           ///< in points
        static inline bool lineDraw = false;          ///< whether strokes are straight lines
    };

    /// @param picker           offers the picture to other programs
    /// @param privateFolder    in whose recovery folder files are kept that a picture replaces
    /// @param documentsFolder  for a picture that neither its file nor that folder takes; empty for none
    ViewControllerWhiteboard(UIUtil &utilities, SharingPicker &picker, const QString &privateFolder,
                             const QString &documentsFolder, QWidget *parent = nullptr,
                             FileCalls &calls = FileCalls::posix());
    ~ViewControllerWhiteboard() override;

    // What the controls call

    void drawLine(QObject *sender);
    void selectColor(QObject *sender);
    void eraser(QObject *sender);
    void revertToImage(QObject *sender);
    void deleteImage(QObject *sender);
    void shareImage(QObject *sender);

    // The picture

    void loadImage();
    void capture();
    void savePNG(const QImage &image, const QString &path);
    void eraseDrawing();
    void eraseAllContent();
    void discard() override;
    [[nodiscard]] QString workTitle() const override;
    [[nodiscard]] bool isUnsaved() const override;
    [[nodiscard]] QByteArray unsavedContent() const override;
    [[nodiscard]] QString unsavedFileName() const override;

protected:
    void viewDidAppear() override;
    void viewWillDisappear() override;
    void viewDidDisappear() override;
    void save() override { capture(); }
    void revert() override { revertToImage(nullptr); }
    void showNotice(const QString &notice) override;
    void forgetSteps() override;
    void contextMenuEvent(QContextMenuEvent *event) override;

private:
    void viewDidLoad();
    void connectControls();
    void addLine();
    void showMode();
    void finishStroke();
    void endStroke();
    void connectCommands();
    void showSteps();
    void step(QImage (BoardHistory::*direction)(const QImage &));
    /// What is shown was that before a step of this name.
    void record(const QString &name, const QImage &before);
    [[nodiscard]] QImage shown() const;
    [[nodiscard]] bool isDrawing() const;
    [[nodiscard]] bool hasUnsavedStroke() const;
    [[nodiscard]] QImage picture() const;

    UIUtil &m_utilities;
    SharingPicker &m_picker;
    std::unique_ptr<Ui::ViewControllerWhiteboard> m_ui;
    WhiteboardFile m_file;
    BoardHistory m_history;
    QImage m_unsaved;         // the picture that could not be written; null where the file holds it
    QImage m_last;            // what the file was last known to hold
    bool m_isChanged = false; // since it was last written or read
    QPainterPath m_captured;  // how far the stroke under way is in the picture that was last written
    Line *m_line = nullptr;
    std::optional<QDir> fileManager; // the folder of the program, once the window was shown
    std::optional<QString> m_path;   // of that folder, where the file lies
};

/// The drawing view: shows the stroke that is being drawn.
class ViewControllerWhiteboard::Line : public QWidget
{
public:
    Line(ViewControllerWhiteboard &controller, QWidget *parent);

    void mouseDown(const QPointF &point);
    void mouseDragged(const QPointF &point);
    void mouseUp(const QPointF &point);
    void mouseMoved(const QPointF &point);
    void draw(QPainter &painter);

    /// The stroke that is being drawn; empty when none is.
    [[nodiscard]] QPainterPath path() const { return myPath; }
    void clear();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    ViewControllerWhiteboard &parentVC;
    QPainterPath myPath;
};

} // namespace oblino
