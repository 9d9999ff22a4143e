#include <tools/notesfile.h>

#include <base/utf8.h>
#include <tools/lineends.h>

#include <cstring>
#include <utility>

namespace oblino {

namespace {

QString sentence(const QString &words)
{
    return words.arg(NotesFile::name);
}

// A byte order mark is a character like others here, or an edit would lose it.
std::optional<QString> decoded(const QByteArray &bytes)
{
    return decodedUtf8(bytes, QStringDecoder::Flag::ConvertInitialBom);
}

NotesFile::Reading textIn(const FileReading &reading)
{
    if (reading.outcome == FileReading::Outcome::Missing)
        return {{}, sentence(QStringLiteral("There is no file “%1”.")), {}};
    if (reading.outcome == FileReading::Outcome::Failed)
        return {{}, reading.error, {reading.error}};
    if (std::optional<QString> text = decoded(reading.bytes))
        return {std::move(text), {}, {}};
    const QString error = sentence(QStringLiteral("“%1” is not valid UTF-8."));
    return {{}, error, {error, QStringLiteral("It will be copied before a save replaces it.")}};
}

// Whether `bytes` are the start of `whole`, up to the midst of a line.
bool isCutShort(const QByteArray &bytes, const QByteArray &whole)
{
    constexpr char lineEnds[] = "\n\r";
    return bytes.size() < whole.size() && whole.startsWith(bytes) &&
           !std::strchr(lineEnds, whole[bytes.size()]) && !std::strchr(lineEnds, bytes.back());
}

} // namespace

NotesFile::NotesFile(Documents &documents)
    : m_documents(documents)
{
}

bool NotesFile::hasPlace() const
{
    return m_documents.folder().has_value();
}

bool NotesFile::isAsSeen()
{
    SafeFile *file = m_documents.file(name);
    // An earlier version may have been restored through the same object.
    return file && file->isAsSeen() && file->lastSeen() == m_bytes;
}

NotesFile::Reading NotesFile::read()
{
    SafeFile *file = m_documents.file(name);
    if (!file)
        return {};
    FileReading reading = file->read();
    Reading result = textIn(reading);
    if (result.text)
        m_bytes = std::move(reading.bytes);
    else
        file->invalidate();
    result.notices = m_documents.takeNotices() + result.notices;
    return result;
}

NotesFile::Reading NotesFile::readAgain()
{
    SafeFile *file = m_documents.file(name);
    if (!file)
        return {};
    const FileReading reading = file->look();
    Reading result = textIn(reading);
    if (result.text && reading.bytes != m_bytes) {
        if (reading.bytes.isEmpty())
            return {{}, sentence(QStringLiteral("another program has emptied “%1”")), {}};
        if (isCutShort(reading.bytes, m_bytes))
            return {{}, sentence(QStringLiteral("another program has cut “%1” short")), {}};
        result.notices << sentence(
            QStringLiteral("“%1” was changed by another program and has been read again."));
        if (!reading.bytes.startsWith(m_bytes)) {
            const QString error = m_documents.versions(name).keep(m_bytes, VersionReason::Replaced);
            if (!error.isEmpty())
                return {{}, error, {}};
            result.notices << QStringLiteral("What was here before is kept in the earlier versions.");
        }
    }
    if (result.text) {
        file->take(reading);
        m_bytes = reading.bytes;
    }
    return result;
}

QByteArray NotesFile::bytesOf(const QString &text) const
{
    return withLineEnds(text, decoded(m_bytes).value_or(QString())).toUtf8();
}

FileWriting NotesFile::write(const QByteArray &bytes)
{
    if (bytes == m_bytes && isAsSeen())
        return {.written = true, .error = {}, .reason = {}, .notices = {}};
    SafeFile *file = m_documents.file(name);
    if (!file)
        return {};
    FileWriting writing = file->write(bytes);
    if (writing.written)
        m_bytes = bytes;
    return writing;
}

} // namespace oblino
