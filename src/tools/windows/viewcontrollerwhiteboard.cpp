#include <tools/windows/viewcontrollerwhiteboard.h>

#include <platform/sharingpicker.h>
#include <platform/trace.h>
#include <tools/windows/boardview.h>
#include <ui/colorbutton.h>
#include <ui/icons.h>
#include <ui/uiutil.h>
#include <ui_viewcontrollerwhiteboard.h>

#include <QBuffer>
#include <QPainter>
#include <QPushButton>
#include <QShowEvent>

#include <utility>

namespace oblino {

namespace {

// Both sides have many divisors, so that at the usual scales they are whole numbers of pixels.
constexpr QSize board(720, 480); // points
constexpr int strip = 60;        // points below it, for the controls
constexpr double penWidth = 5;   // points
constexpr double eraserWidth = 10;
constexpr Color white = {1, 1, 1, 1};
constexpr int quickly = 80; // a PNG quality: half the time of the usual one, for a file of the same size

} // namespace

ViewControllerWhiteboard::ViewControllerWhiteboard(UIUtil &utilities, SharingPicker &picker,
                                                   const QString &privateFolder, QWidget *parent)
    : QDialog(parent)
    , m_utilities(utilities)
    , m_picker(picker)
    , m_ui(std::make_unique<Ui::ViewControllerWhiteboard>())
    , m_file(privateFolder)
{
    m_ui->setupUi(this);
    lineButton = m_ui->lineButton;
    color = m_ui->color;
    whiteboard = m_ui->whiteboard;
    for (QPushButton *button : findChildren<QPushButton *>()) {
        if (const QString icon = button->property("iconName").toString(); !icon.isEmpty())
            button->setIcon(themedIcon(icon));
    }
    connectControls();
    viewDidLoad();
}

ViewControllerWhiteboard::~ViewControllerWhiteboard() = default;

void ViewControllerWhiteboard::connectControls()
{
    connect(lineButton, &QPushButton::clicked, this, [this] { drawLine(lineButton); });
    connect(color, &ColorButton::picked, this, [this] { selectColor(color); });
    connect(m_ui->eraserButton, &QPushButton::clicked, this, [this] { eraser(m_ui->eraserButton); });
    connect(m_ui->revertButton, &QPushButton::clicked, this, [this] { revertToImage(m_ui->revertButton); });
    connect(m_ui->deleteButton, &QPushButton::clicked, this, [this] { deleteImage(m_ui->deleteButton); });
    connect(m_ui->shareButton, &QPushButton::clicked, this, [this] { shareImage(m_ui->shareButton); });
}

void ViewControllerWhiteboard::viewDidLoad()
{
    setFixedSize(board + QSize(0, strip));
    color->setColor(GlobalVariable::colorWell);
    addLine();
}

void ViewControllerWhiteboard::viewDidAppear()
{
    fileManager = QDir::current();
    m_path = fileManager->absolutePath();
    loadImage();
}

void ViewControllerWhiteboard::viewWillDisappear()
{
    capture();
}

void ViewControllerWhiteboard::viewDidDisappear()
{
    color->deactivate();
    if (!m_unsaved.isNull())
        setAttribute(Qt::WA_DeleteOnClose, false);
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
    const Color picked = color->color();
    GlobalVariable::colorWell = picked;
    GlobalVariable::lineWidth = penWidth;
    color->deactivate();
    trace("Select Color", picked.red(), picked.green(), picked.blue(), picked.alpha());
}

void ViewControllerWhiteboard::eraser(QObject * /*sender*/)
{
    color->setColor(white);
    GlobalVariable::colorWell = white;
    GlobalVariable::lineWidth = eraserWidth;
}

void ViewControllerWhiteboard::revertToImage(QObject * /*sender*/)
{
    eraseAllContent();
    trace("Revert Image");
    loadImage();
}

void ViewControllerWhiteboard::deleteImage(QObject * /*sender*/)
{
    if (!m_utilities.dialogYesNo(QStringLiteral("Are you sure you want to erase the Whiteboard ?"), {}))
        return;
    trace("Ok Pressed!");
    trace("Delete Image");
    eraseAllContent();
}

void ViewControllerWhiteboard::shareImage(QObject *sender)
{
    capture();
    color->deactivate();
    const QString header = QStringLiteral("Whiteboard\n");
    const QString footer = QStringLiteral(
        "Sent with Oblino. Download from the App Store for Mac:\n\n" OBLINO_STORE_ADDRESS "\n");
    if (!m_path)
        return;
    const QImage picture = m_unsaved.isNull()
                               ? m_file.read(*m_path + QLatin1Char('/') + WhiteboardFile::name, board)
                               : m_unsaved;
    m_picker.show({header, picture, footer}, sender);
    close();
}

void ViewControllerWhiteboard::loadImage()
{
    if (!m_unsaved.isNull()) {
        whiteboard->setImage(m_unsaved);
    } else if (m_path) {
        m_isChanged = false;
        whiteboard->setImage(m_file.read(*m_path + QLatin1Char('/') + WhiteboardFile::name, board));
    }
}

void ViewControllerWhiteboard::capture()
{
    // On a screen of fewer pixels the picture would lose some for nothing.
    if (!m_isChanged && m_unsaved.isNull() && m_file.isAsSeen())
        return;
    const qreal pixels = devicePixelRatioF();
    QImage bitmap((QSizeF(board) * pixels).toSize(), QImage::Format_RGB32);
    if (bitmap.isNull())
        return;
    bitmap.setDevicePixelRatio(pixels);
    bitmap.fill(Qt::white);
    render(&bitmap, {}, drawingArea(), QWidget::DrawChildren);
    savePNG(bitmap, WhiteboardFile::name);
}

void ViewControllerWhiteboard::savePNG(const QImage &image, const QString &path)
{
    QByteArray png;
    QBuffer buffer(&png);
    if (!image.save(&buffer, "PNG", quickly))
        return;
    const QString error = m_file.write(png, path);
    m_unsaved = error.isEmpty() ? QImage() : image;
    m_isChanged = false;
    if (!error.isEmpty())
        trace("caught:", error);
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
    whiteboard->setImage({});
    trace("Subviews:", findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly).size());
    eraseDrawing();
}

void ViewControllerWhiteboard::addLine()
{
    m_line = new Line(*this, this);
    m_line->setGeometry(drawingArea());
    m_line->show();
    showMode();
}

void ViewControllerWhiteboard::showMode()
{
    const bool straight = GlobalVariable::lineDraw;
    m_line->setCursor(straight ? Qt::CrossCursor : Qt::ArrowCursor);
    lineButton->setIcon(
        themedIcon(straight ? QStringLiteral("AppLineIcon") : QStringLiteral("AppLineCurveIcon")));
    lineButton->setToolTip(straight ? QStringLiteral("STRAIGHT LINE") : QStringLiteral("DRAW"));
    lineButton->setAccessibleDescription(straight ? tr("Strokes are straight lines")
                                                  : tr("Strokes are free"));
}

QRect ViewControllerWhiteboard::drawingArea() const
{
    return {{}, board};
}

void ViewControllerWhiteboard::showEvent(QShowEvent *event)
{
    if (!event->spontaneous())
        viewDidAppear();
    QDialog::showEvent(event);
}

void ViewControllerWhiteboard::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous())
        viewWillDisappear();
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        viewDidDisappear();
}

} // namespace oblino
