#include <tools/windows/viewcontrollernotes.h>

#include <core/taskmanager.h>
#include <platform/trace.h>
#include <platform/widgets/windowsize.h>
#include <ui_viewcontrollernotes.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>
#include <QTimer>

namespace oblino {

ViewControllerNotes::ViewControllerNotes(TaskManager &store, Documents &documents, QWidget *parent,
                                         std::chrono::milliseconds interval)
    : QDialog(parent)
    , m_store(store)
    , m_file(documents)
    , m_interval(interval)
    , m_ui(std::make_unique<Ui::ViewControllerNotes>())
{
    m_ui->setupUi(this);
    textEdit = m_ui->textEdit;
    textEdit->document()->setDocumentMargin(16);
    textEdit->installEventFilter(this);
    viewDidLoad();
}

ViewControllerNotes::~ViewControllerNotes()
{
    timer.reset();
    // The last chance of a text that could not be saved when the window went away.
    if (textEdit->document()->isModified())
        saveToFile();
}

void ViewControllerNotes::viewDidLoad()
{
    textEdit->document()->setModified(false);
    readFromFile();
    textEdit->moveCursor(QTextCursor::End);
}

void ViewControllerNotes::viewDidAppear()
{
    setLeastSize(*this, {320, 240});
    // The ground is chosen with the text, so that the one stays readable on the other when the appearance
    // changes meanwhile.
    QPalette palette = QApplication::palette(textEdit);
    palette.setColor(QPalette::Text, m_store.inDarkMode() ? Qt::white : Qt::black);
    palette.setColor(QPalette::Base, palette.color(QPalette::Base));
    textEdit->setPalette(palette);
    textEdit->ensureCursorVisible();
    timer = std::make_unique<QTimer>();
    connect(timer.get(), &QTimer::timeout, this, [this] { tick(*timer); });
    timer->start(m_interval);
}

void ViewControllerNotes::viewWillDisappear()
{
    timer.reset();
}

void ViewControllerNotes::viewDidDisappear()
{
    saveToFile();
    if (textEdit->document()->isModified())
        setAttribute(Qt::WA_DeleteOnClose, false);
}

void ViewControllerNotes::discard()
{
    textEdit->document()->setModified(false);
}

void ViewControllerNotes::tick(const QTimer & /*firing*/)
{
    saveToFile();
    trace("Saved File");
}

bool ViewControllerNotes::saveToFile()
{
    if (!m_file.hasPlace())
        return true;
    QTextDocument &document = *textEdit->document();
    const QString error =
        document.isModified() ? m_file.write(document.toRawText()) : m_file.writeUnchanged();
    if (!error.isEmpty()) {
        trace("Error", error);
        return false;
    }
    document.setModified(false);
    trace("Write File");
    return true;
}

QString ViewControllerNotes::readFromFile()
{
    if (!m_file.hasPlace())
        return {};
    const NotesFile::Reading reading = m_file.read();
    if (reading.text) {
        textEdit->setPlainText(*reading.text);
        textEdit->document()->setModified(false);
        trace("Read File");
    } else {
        trace("Error", reading.error);
    }
    return {};
}

void ViewControllerNotes::showEvent(QShowEvent *event)
{
    QDialog::showEvent(event);
    if (!event->spontaneous())
        viewDidAppear();
}

void ViewControllerNotes::hideEvent(QHideEvent *event)
{
    if (!event->spontaneous())
        viewWillDisappear();
    QDialog::hideEvent(event);
    if (!event->spontaneous())
        viewDidDisappear();
}

bool ViewControllerNotes::eventFilter(QObject *watched, QEvent *event)
{
    // The control would put U+2028 into the text, which most programs show as no line end.
    if (watched == textEdit && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::InsertLineSeparator)) {
        textEdit->insertPlainText(QStringLiteral("\n"));
        return true;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace oblino
