#include <tools/windows/viewcontrollernotes.h>

#include <base/datakind.h>
#include <base/trace.h>
#include <controls/noticelabel.h>
#include <core/taskmanager.h>
#include <tools/lineends.h>
#include <ui_viewcontrollernotes.h>

#include <QApplication>
#include <QKeyEvent>
#include <QPlainTextEdit>

#include <algorithm>

namespace oblino {

ViewControllerNotes::ViewControllerNotes(TaskManager &store, Documents &documents, QWidget *parent,
                                         std::chrono::milliseconds interval,
                                         std::chrono::milliseconds afterLastKey)
    : FileWindow(DataKind::Notes, documents.versions(NotesFile::name), parent, {320, 240})
    , m_store(store)
    , m_file(documents)
    , m_ui(std::make_unique<Ui::ViewControllerNotes>())
{
    m_ui->setupUi(this);
    m_ui->textEdit->document()->setDocumentMargin(16);
    m_ui->textEdit->installEventFilter(this);
    timer.setInterval(interval);
    connect(&timer, &QTimer::timeout, this, [this] { tick(timer); });
    m_afterLastKey.setSingleShot(true);
    m_afterLastKey.setInterval(afterLastKey);
    connect(&m_afterLastKey, &QTimer::timeout, this, [this] {
        if (isEdited())
            saveToFile();
    });
    viewDidLoad();
    connect(m_ui->textEdit, &QPlainTextEdit::textChanged, &m_afterLastKey, qOverload<>(&QTimer::start));
    if (m_file.hasPlace()) {
        m_watch = std::make_unique<FileWatch>(m_file.path());
        connect(m_watch.get(), &FileWatch::changed, this, &ViewControllerNotes::readWhatOthersWrote);
    }
}

ViewControllerNotes::~ViewControllerNotes()
{
    // The last chance of a text that could not be saved when the window went away.
    if (isUnsaved())
        saveToFile();
}

void ViewControllerNotes::viewDidLoad()
{
    m_ui->textEdit->document()->setModified(false);
    readFromFile();
    m_ui->textEdit->moveCursor(QTextCursor::End);
}

void ViewControllerNotes::viewDidAppear()
{
    // The ground is chosen with the text, so that the one stays readable on the other when the appearance
    // changes meanwhile.
    QPalette palette = QApplication::palette(m_ui->textEdit);
    palette.setColor(QPalette::Text, m_store.inDarkMode() ? Qt::white : Qt::black);
    palette.setColor(QPalette::Base, palette.color(QPalette::Base));
    m_ui->textEdit->setPalette(palette);
    m_ui->textEdit->ensureCursorVisible();
    timer.start();
}

void ViewControllerNotes::viewWillDisappear()
{
    timer.stop();
}

void ViewControllerNotes::viewDidDisappear()
{
    saveToFile();
    FileWindow::viewDidDisappear();
}

void ViewControllerNotes::discard()
{
    m_ui->textEdit->document()->setModified(false);
    m_isOnlyHere = false;
}

void ViewControllerNotes::tick(const QTimer & /*firing*/)
{
    saveToFile();
    trace("Saved File");
}

bool ViewControllerNotes::saveToFile()
{
    m_afterLastKey.stop();
    if (!m_file.hasPlace()) {
        setFailure(tr("The notes could not be saved: there is no documents folder."),
                   isEdited() ? tr("there is no documents folder") : QString());
        return true;
    }
    readWhatOthersWrote();
    QTextDocument &document = *m_ui->textEdit->document();
    const FileWriting writing = m_file.write(unsavedContent());
    showResult(writing);
    if (!writing.written) {
        // Half of it may be in the file, which is no text to read again.
        document.setModified(isEdited() || !m_file.bytes().isEmpty());
        trace("Error", writing.error);
        return false;
    }
    discard();
    trace("Write File");
    return true;
}

QString ViewControllerNotes::readFromFile()
{
    if (!m_file.hasPlace())
        return {};
    const NotesFile::Reading reading = m_file.read();
    showNotices(reading.notices);
    if (reading.text) {
        m_ui->textEdit->setPlainText(*reading.text);
        discard();
        setFailure({}, {});
        trace("Read File");
    } else {
        trace("Error", reading.error);
    }
    return {};
}

void ViewControllerNotes::readWhatOthersWrote()
{
    if (isEdited() || (m_file.isAsSeen() && !m_isOnlyHere))
        return;
    const NotesFile::Reading reading = m_file.readAgain();
    if (reading.text) {
        showText(*reading.text);
        showNotices(reading.notices);
        setFailure({}, {});
        m_isOnlyHere = false;
        trace("Read File");
    } else if (!m_file.bytes().isEmpty()) {
        setFailure(reading.error, reading.error);
        m_isOnlyHere = true;
    }
}

// Only what differs is replaced, so that cursor and view stay, and the text before comes back with Undo.
void ViewControllerNotes::showText(const QString &text)
{
    QTextDocument &document = *m_ui->textEdit->document();
    const QString before = document.toRawText();
    const QString after = withControlLineEnds(text);
    const auto [oldStart, newStart] = std::mismatch(before.begin(), before.end(), after.begin(), after.end());
    const auto oldEnd = std::mismatch(before.rbegin(), std::make_reverse_iterator(oldStart), after.rbegin(),
                                      std::make_reverse_iterator(newStart))
                            .first;
    const qsizetype start = oldStart - before.begin();
    const qsizetype sameAtEnd = oldEnd - before.rbegin();
    QTextCursor cursor(&document);
    cursor.setPosition(int(start));
    cursor.setPosition(int(before.size() - sameAtEnd), QTextCursor::KeepAnchor);
    cursor.insertText(after.sliced(start, after.size() - sameAtEnd - start));
    document.setModified(false);
}

void ViewControllerNotes::showNotice(const QString &notice)
{
    m_ui->notice->setNotice(notice);
}

void ViewControllerNotes::forgetSteps()
{
    m_ui->textEdit->document()->clearUndoRedoStacks();
}

bool ViewControllerNotes::isEdited() const
{
    return m_ui->textEdit->document()->isModified();
}

QString ViewControllerNotes::workTitle() const
{
    return tr("The notes");
}

bool ViewControllerNotes::isUnsaved() const
{
    return isEdited() || m_isOnlyHere;
}

QByteArray ViewControllerNotes::unsavedContent() const
{
    return isEdited() ? m_file.bytesOf(m_ui->textEdit->document()->toRawText()) : m_file.bytes();
}

QString ViewControllerNotes::unsavedFileName() const
{
    return NotesFile::name;
}

bool ViewControllerNotes::eventFilter(QObject *watched, QEvent *event)
{
    // The control would put U+2028 into the text, which most programs show as no line end.
    if (watched == m_ui->textEdit && event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent *>(event)->matches(QKeySequence::InsertLineSeparator)) {
        m_ui->textEdit->insertPlainText(QStringLiteral("\n"));
        return true;
    }
    return FileWindow::eventFilter(watched, event);
}

} // namespace oblino
