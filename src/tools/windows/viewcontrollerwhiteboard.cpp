#include <tools/windows/viewcontrollerwhiteboard.h>

#include <base/datakind.h>
#include <base/sharingpicker.h>
#include <base/trace.h>
#include <controls/colorbutton.h>
#include <controls/icons.h>
#include <controls/noticelabel.h>
#include <core/sharetext.h>
#include <tools/windows/boardview.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollerwhiteboard.h>

#include <QDir>
#include <QPushButton>

#include <utility>

namespace oblino {

namespace {

// Both sides have many divisors, so that at the usual scales they are whole numbers of pixels.
constexpr QSize board(720, 480); // points
constexpr int strip = 60;        // points below it, for the controls
constexpr double penWidth = 5;   // points
constexpr double eraserWidth = 10;
constexpr Color white = {1, 1, 1, 1};

} // namespace

ViewControllerWhiteboard::ViewControllerWhiteboard(UIUtil &utilities, SharingPicker &picker,
                                                   const QString &privateFolder,
                                                   const QString &documentsFolder, QWidget *parent,
                                                   FileCalls &calls)
    : FileWindow(DataKind::Whiteboard, WhiteboardFile::versions(privateFolder, documentsFolder), parent)
    , m_utilities(utilities)
    , m_picker(picker)
    , m_ui(std::make_unique<Ui::ViewControllerWhiteboard>())
    , m_file(privateFolder, calls)
{
    m_ui->setupUi(this);
    for (QPushButton *button : findChildren<QPushButton *>()) {
        if (const QString icon = button->property("iconName").toString(); !icon.isEmpty())
            button->setIcon(themedIcon(icon));
    }
    connectControls();
    connectCommands();
    viewDidLoad();
}

ViewControllerWhiteboard::~ViewControllerWhiteboard()
{
    // The last chance of a picture that could not be saved when the window went away.
    capture();
}

void ViewControllerWhiteboard::connectControls()
{
    connect(m_ui->lineButton, &QPushButton::clicked, this, [this] { drawLine(m_ui->lineButton); });
    connect(m_ui->color, &ColorButton::picked, this, [this] { selectColor(m_ui->color); });
    connect(m_ui->eraserButton, &QPushButton::clicked, this, [this] { eraser(m_ui->eraserButton); });
    connect(m_ui->revertButton, &QPushButton::clicked, this, [this] { revertToImage(m_ui->revertButton); });
    connect(m_ui->deleteButton, &QPushButton::clicked, this, [this] { deleteImage(m_ui->deleteButton); });
    connect(m_ui->shareButton, &QPushButton::clicked, this, [this] { shareImage(m_ui->shareButton); });
}

void ViewControllerWhiteboard::viewDidLoad()
{
    showNotice({});
    m_ui->color->setUse(ColorButton::Use::Pen);
    m_ui->color->setColor(GlobalVariable::colorWell);
    addLine();
}

void ViewControllerWhiteboard::viewDidAppear()
{
    fileManager = QDir::current();
    m_path = fileManager->absolutePath();
    loadImage();
    forgetSteps(); // which were of another picture, perhaps
}

void ViewControllerWhiteboard::viewWillDisappear()
{
    capture();
    endStroke();
}

void ViewControllerWhiteboard::viewDidDisappear()
{
    m_ui->color->deactivate();
    FileWindow::viewDidDisappear();
}

void ViewControllerWhiteboard::drawLine(QObject * /*sender*/)
{
    trace("Line Pressed");
    GlobalVariable::lineDraw = !GlobalVariable::lineDraw;
    showMode();
}

void ViewControllerWhiteboard::selectColor(QObject * /*sender*/)
{
    trace("Select Color");
    const Color picked = m_ui->color->color();
    GlobalVariable::colorWell = picked;
    GlobalVariable::lineWidth = penWidth;
    m_ui->color->deactivate();
    trace("Select Color", picked.red(), picked.green(), picked.blue(), picked.alpha());
}

void ViewControllerWhiteboard::eraser(QObject * /*sender*/)
{
    m_ui->color->setColor(white);
    GlobalVariable::colorWell = white;
    GlobalVariable::lineWidth = eraserWidth;
}

void ViewControllerWhiteboard::revertToImage(QObject * /*sender*/)
{
    const QImage before = shown();
    eraseAllContent();
    trace("Revert Image");
    loadImage();
    record(tr("Revert"), before);
}

void ViewControllerWhiteboard::deleteImage(QObject * /*sender*/)
{
    if (!m_utilities.dialogYesNo(QStringLiteral("Are you sure you want to erase the Whiteboard ?"), {}))
        return;
    trace("Ok Pressed!");
    trace("Delete Image");
    const QImage before = shown();
    eraseAllContent();
    record(tr("Delete"), before);
}

void ViewControllerWhiteboard::shareImage(QObject *sender)
{
    m_isChanged = m_isChanged || !m_file.isAsSeen(); // the file is to hold what is shared
    capture();
    m_ui->color->deactivate();
    const QString header = QStringLiteral("Whiteboard\n");
    const QString footer = shareClosing() + QLatin1Char('\n');
    if (!m_path)
        return;
    const QImage shared = m_unsaved.isNull()
                              ? m_file.read(*m_path + QLatin1Char('/') + WhiteboardFile::name, board).picture
                              : m_unsaved;
    m_picker.show({header, shared, footer}, sender, SharingPicker::Edge::Top);
    close();
}

void ViewControllerWhiteboard::eraseDrawing()
{
    delete std::exchange(m_line, nullptr);
    addLine();
}

void ViewControllerWhiteboard::eraseAllContent()
{
    m_unsaved = {};
    m_isChanged = true;
    m_ui->whiteboard->setImage({});
    trace("Subviews:", findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size());
    eraseDrawing();
}

void ViewControllerWhiteboard::addLine()
{
    m_line = new Line(*this, this);
    m_line->setGeometry({{}, board});
    m_line->show();
    showMode();
}

void ViewControllerWhiteboard::showMode()
{
    const bool straight = GlobalVariable::lineDraw;
    m_line->setCursor(straight ? Qt::CrossCursor : Qt::ArrowCursor);
    m_ui->lineButton->setIcon(
        themedIcon(straight ? QStringLiteral("AppLineIcon") : QStringLiteral("AppLineCurveIcon")));
    m_ui->lineButton->setToolTip(straight ? QStringLiteral("STRAIGHT LINE") : QStringLiteral("DRAW"));
    m_ui->lineButton->setAccessibleDescription(straight ? tr("Strokes are straight lines")
                                                        : tr("Strokes are free"));
}

// The board keeps its size and place when the window grows for a notice.
void ViewControllerWhiteboard::showNotice(const QString &notice)
{
    m_ui->notice->setNotice(notice);
    const int lines = notice.isEmpty() ? 0 : m_ui->notice->heightForWidth(board.width());
    setFixedSize(board + QSize(0, strip + lines));
}

} // namespace oblino
