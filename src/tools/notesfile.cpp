#include <tools/notesfile.h>

#include <platform/trace.h>

#include <QStringDecoder>

#include <algorithm>

namespace oblino {

namespace {

QString firstLineEnd(const QString &text)
{
    const auto end = std::find_if(text.begin(), text.end(),
                                  [](QChar character) { return character == u'\n' || character == u'\r'; });
    if (end == text.end() || *end == u'\n')
        return QStringLiteral("\n");
    const bool isPair = end + 1 != text.end() && end[1] == u'\n';
    return isPair ? QStringLiteral("\r\n") : QStringLiteral("\r");
}

} // namespace

NotesFile::NotesFile(Documents &documents)
    : m_documents(documents)
    , m_lineEnd(QStringLiteral("\n"))
{
}

bool NotesFile::hasPlace() const
{
    return m_documents.folder().has_value();
}

NotesFile::Reading NotesFile::read()
{
    SafeFile *file = m_documents.file(name);
    if (!file)
        return {};
    FileReading reading = file->read();
    if (reading.outcome == FileReading::Outcome::Missing)
        return {{}, QStringLiteral("There is no file “%1”.").arg(name)};
    if (reading.outcome == FileReading::Outcome::Failed)
        return {{}, reading.error};
    // A byte order mark is a character like others here, or an edit would lose it.
    QStringDecoder decoder(QStringDecoder::Utf8,
                           QStringDecoder::Flag::Stateless | QStringDecoder::Flag::ConvertInitialBom);
    QString text = decoder(reading.bytes);
    if (decoder.hasError()) {
        file->forget();
        return {{}, QStringLiteral("“%1” is not valid UTF-8.").arg(name)};
    }
    m_bytes = std::move(reading.bytes);
    m_lineEnd = firstLineEnd(text);
    return {std::move(text), {}};
}

QString NotesFile::write(QString text)
{
    text.replace(QChar::ParagraphSeparator, m_lineEnd);
    return write(text.toUtf8());
}

QString NotesFile::writeUnchanged()
{
    SafeFile *file = m_documents.file(name);
    return !file || file->isAsSeen() ? QString() : write(m_bytes);
}

QString NotesFile::write(const QByteArray &bytes)
{
    SafeFile *file = m_documents.file(name);
    if (!file)
        return {};
    const FileWriting writing = file->write(bytes);
    for (const QString &notice : writing.notices)
        trace(notice);
    if (!writing.written)
        return writing.error;
    m_bytes = bytes;
    return {};
}

} // namespace oblino
