#include <messaging/httpline.h>

#include <QCoreApplication>

#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <utility>

namespace oblino {

namespace {

constexpr int margin = 10; // of what an idle connection has outlived

QString tr(const char *text)
{
    return QCoreApplication::translate("HttpClient", text);
}

// What a request sends and receives.
struct Transfer
{
    QByteArray unsent;
    QByteArray received;
    qsizetype longest;
    bool isSent = false;
    bool hasHead = false;                                                           // the whole of it
    std::chrono::steady_clock::time_point heard = std::chrono::steady_clock::now(); // last
};

size_t giveBody(char *buffer, size_t size, size_t count, void *data)
{
    QByteArray &unsent = static_cast<Transfer *>(data)->unsent;
    const qsizetype taken = std::min(static_cast<qsizetype>(size * count), unsent.size());
    std::memcpy(buffer, unsent.constData(), static_cast<size_t>(taken));
    unsent.remove(0, taken);
    return static_cast<size_t>(taken);
}

// The library would send a request again whose connection ended before the answer.
int sendOnce(void *data, char *, char *, int, int)
{
    return std::exchange(static_cast<Transfer *>(data)->isSent, true) ? CURL_PREREQFUNC_ABORT
                                                                      : CURL_PREREQFUNC_OK;
}

int rewind(void *, curl_off_t, int)
{
    return CURL_SEEKFUNC_OK; // sendOnce() is asked next
}

size_t takeHeader(char *bytes, size_t, size_t size, void *data)
{
    const QByteArrayView line(bytes, static_cast<qsizetype>(size));
    auto *transfer = static_cast<Transfer *>(data);
    transfer->heard = std::chrono::steady_clock::now();
    if (line.startsWith("HTTP/")) // news may come before the answer
        transfer->hasHead = false;
    transfer->hasHead = transfer->hasHead || line == "\r\n";
    return size;
}

size_t takeBody(char *bytes, size_t, size_t size, void *data)
{
    auto *transfer = static_cast<Transfer *>(data);
    transfer->heard = std::chrono::steady_clock::now();
    const auto length = static_cast<qsizetype>(size);
    if (length > transfer->longest - transfer->received.size())
        return 0;
    transfer->received.append(bytes, length);
    return size;
}

QString errorMessage(CURLcode code, const char *details)
{
    switch (code) {
    case CURLE_OPERATION_TIMEDOUT:
        return tr("The server did not answer in time.");
    case CURLE_WRITE_ERROR:
    case CURLE_FILESIZE_EXCEEDED:
        return tr("The answer is too long.");
    case CURLE_GOT_NOTHING:
    case CURLE_PARTIAL_FILE:
    case CURLE_ABORTED_BY_CALLBACK:
        return tr("The server closed the connection without a whole answer.");
    default:
        return QString::fromUtf8(*details != '\0' ? details : curl_easy_strerror(code));
    }
}

CURLM *newMulti()
{
    static const CURLcode library = curl_global_init(CURL_GLOBAL_DEFAULT); // once, whatever the thread
    return library == CURLE_OK ? curl_multi_init() : nullptr;
}

} // namespace

HttpLine::HttpLine(QByteArray authorities, const HttpLimits &limits)
    : m_authorities(std::move(authorities))
    , m_limits(limits)
    , m_multi(newMulti(), &curl_multi_cleanup)
    , m_easy(curl_easy_init(), &curl_easy_cleanup)
{
}

HttpLine::~HttpLine()
{
    endTrial();
}

HttpAnswer HttpLine::post(const HttpForm &form, const std::atomic<bool> &stopped)
{
    Transfer transfer{form.body, {}, m_limits.answer};
    std::array<char, CURL_ERROR_SIZE> details = {};
    curl_easy_reset(m_easy.get());
    setOptions(form);
    curl_easy_setopt(m_easy.get(), CURLOPT_ERRORBUFFER, details.data());
    curl_easy_setopt(m_easy.get(), CURLOPT_PREREQDATA, &transfer);
    curl_easy_setopt(m_easy.get(), CURLOPT_READDATA, &transfer);
    curl_easy_setopt(m_easy.get(), CURLOPT_HEADERDATA, &transfer);
    curl_easy_setopt(m_easy.get(), CURLOPT_WRITEDATA, &transfer);
    // The account's answer is judged by its text, so none is asked for in a compressed form.
    curl_slist *headers = nullptr;
    for (const char *header : {"Accept:", "Expect:", "Accept-Encoding: identity"})
        headers = curl_slist_append(headers, header);
    curl_easy_setopt(m_easy.get(), CURLOPT_HTTPHEADER, headers);

    chooseConnection(form.url);
    const auto isOver = [&] { return stopped || Clock::now() - transfer.heard > m_limits.silence; };
    CURLcode code = perform(isOver);
    curl_slist_free_all(headers);
    if (code == CURLE_OK && !transfer.hasHead)
        code = CURLE_PARTIAL_FILE;
    judgeConnection(code);
    curl_multi_remove_handle(m_multi.get(), m_easy.get());
    long status = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_RESPONSE_CODE, &status);
    if (code != CURLE_OK)
        return {{}, static_cast<int>(status), errorMessage(code, details.data())};
    transfer.received.detach(); // a body without bytes is one, too
    return {transfer.received, static_cast<int>(status), {}};
}

void HttpLine::setOptions(const HttpForm &form)
{
    const auto set = [this](CURLoption option, auto value) { curl_easy_setopt(m_easy.get(), option, value); };
    set(CURLOPT_NOSIGNAL, 1L);
    set(CURLOPT_QUICK_EXIT, 1L); // nobody waits for a look-up of a name
    set(CURLOPT_URL, form.url.toEncoded(QUrl::RemoveFragment).constData());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "https");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_USERAGENT, "Oblino");
    set(CURLOPT_HTTPAUTH, static_cast<long>(CURLAUTH_BASIC));
    set(CURLOPT_USERNAME, form.user.toUtf8().constData());
    set(CURLOPT_PASSWORD, form.password.toUtf8().constData());
    set(CURLOPT_POST, 1L);
    set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(form.body.size()));
    set(CURLOPT_READFUNCTION, &giveBody);
    set(CURLOPT_PREREQFUNCTION, &sendOnce);
    set(CURLOPT_SEEKFUNCTION, &rewind);
    set(CURLOPT_HEADERFUNCTION, &takeHeader);
    set(CURLOPT_WRITEFUNCTION, &takeBody);
    set(CURLOPT_TIMEOUT_MS, static_cast<long>(m_limits.total.count()));
    if (!m_authorities.isEmpty()) {
        curl_blob authorities{m_authorities.data(), static_cast<size_t>(m_authorities.size()),
                              CURL_BLOB_COPY};
        set(CURLOPT_CAINFO_BLOB, &authorities);
    }
}

void HttpLine::chooseConnection(const QUrl &url)
{
    if (url.host() != m_server.host() || url.port() != m_server.port()) {
        endTrial();
        m_server = url;
        m_habit = Habit::Unknown;
    }
    const auto now = Clock::now();
    if (m_habit == Habit::Tried && now - m_triedSince >= m_limits.trial) {
        char byte = 0;
        const auto waiting = ::recv(m_triedSocket, &byte, 1, MSG_PEEK | MSG_DONTWAIT);
        m_habit = waiting < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? Habit::Keeps : Habit::Ends;
        ::shutdown(m_triedSocket, SHUT_RDWR); // it has been idle for too long
        endTrial();
    }
    const bool isRecent = m_habit == Habit::Keeps && now - m_lastAnswer < m_limits.trial / margin;
    const bool isKept = m_habit == Habit::Unknown || m_habit == Habit::Keeps;
    curl_easy_setopt(m_easy.get(), CURLOPT_FRESH_CONNECT, isRecent ? 0L : 1L);
    curl_easy_setopt(m_easy.get(), CURLOPT_FORBID_REUSE, isKept ? 0L : 1L);
}

CURLcode HttpLine::perform(const std::function<bool()> &isOver)
{
    constexpr int longestWait = 200; // ms; the library wakes up before where it has something to do
    curl_multi_add_handle(m_multi.get(), m_easy.get());
    int running = 1;
    while (running > 0 && !isOver()) {
        curl_multi_perform(m_multi.get(), &running);
        if (running > 0)
            curl_multi_poll(m_multi.get(), nullptr, 0, longestWait, nullptr);
    }
    int waiting = 0;
    const CURLMsg *message = curl_multi_info_read(m_multi.get(), &waiting);
    return message ? message->data.result : CURLE_OPERATION_TIMEDOUT;
}

void HttpLine::judgeConnection(CURLcode code)
{
    long connections = 0;
    curl_easy_getinfo(m_easy.get(), CURLINFO_NUM_CONNECTS, &connections);
    if (m_habit == Habit::Unknown && code == CURLE_OK) {
        curl_socket_t socket = CURL_SOCKET_BAD;
        curl_easy_getinfo(m_easy.get(), CURLINFO_ACTIVESOCKET, &socket);
        m_triedSocket = ::dup(socket);
        m_triedSince = Clock::now();
        m_habit = m_triedSocket < 0 ? Habit::Ends : Habit::Tried;
    } else if (code == CURLE_ABORTED_BY_CALLBACK || (code != CURLE_OK && connections == 0)) {
        m_habit = Habit::Ends;
    }
    m_lastAnswer = Clock::now();
}

void HttpLine::endTrial()
{
    if (m_triedSocket >= 0)
        ::close(std::exchange(m_triedSocket, -1));
}

void HttpLine::wake()
{
    curl_multi_wakeup(m_multi.get());
}

} // namespace oblino
