// How many messages a second sendSMS sends at delay 0, against the same POSTs by a bare QNetworkAccessManager
// on one connection that is kept, both to a server on loopback.
#include <base/appearance.h>
#include <base/trace.h>
#include <core/taskmanager.h>
#include <files/defaults.h>
#include <messaging/httpclient.h>
#include <messaging/smsgateway.h>
#include <messaging/smsmessage.h>
#include <support/httpsserver.h>

#include <QCoreApplication>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTemporaryDir>

#include <fcntl.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>

using namespace oblino;

namespace {

constexpr int messages = 100; // a round
constexpr int rounds = 31;    // short ones side by side, so that other load meets both alike
constexpr double goal = 0.5;  // of the bare client's rate

const QString message = QString(160, u'm');
const QString number = QStringLiteral("+15550100");

template<typename Send>
double rate(const Send &send)
{
    const auto begin = std::chrono::steady_clock::now();
    for (int i = 0; i < messages; ++i) {
        if (!send())
            qFatal("a message was not sent");
    }
    return messages / std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

bool sendBare(QNetworkAccessManager &manager, const QNetworkRequest &request)
{
    const std::unique_ptr<QNetworkReply> reply(manager.post(request, smsForm(number, number, message)));
    QEventLoop loop;
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    loop.exec();
    return reply->error() == QNetworkReply::NoError && reply->readAll() == "fine";
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Trace::setDescriptor(::open("/dev/null", O_WRONLY | O_CLOEXEC));
    const QString host = QStringLiteral("127.0.0.1");
    HttpsServer server;
    server.setReply({Reply::answer("fine")});

    const QTemporaryDir folder;
    Defaults defaults(folder.filePath(QStringLiteral("settings.ini")));
    Appearance appearance;
    TaskManager settings(defaults, appearance);
    settings.setTwilioSID(QStringLiteral("AC1"));
    settings.setTwilioSendingPhoneNo(number);
    HttpClient client(Certificate::loopback().trust());
    SmsGateway gateway(settings, client, host, server.port());

    QNetworkAccessManager manager;
    QNetworkRequest request(*smsUrl(host, server.port(), QStringLiteral("AC1"), {}));
    request.setSslConfiguration(Certificate::loopback().trust());
    request.setHeader(QNetworkRequest::ContentTypeHeader,
                      QByteArrayLiteral("application/x-www-form-urlencoded"));

    std::vector<double> sent;
    std::vector<double> bare;
    std::vector<double> ratios;
    for (int round = 0; round < rounds; ++round) {
        sent.push_back(rate([&] { return gateway.sendSMS(message, number); }));
        bare.push_back(rate([&] { return sendBare(manager, request); }));
        ratios.push_back(sent.back() / bare.back());
    }
    const double ratio = median(ratios);
    std::printf("sendSMS %.0f a second, bare client %.0f a second: %.2f (goal %.1f)%s, %d connections\n",
                median(sent), median(bare), ratio, goal, ratio >= goal ? "" : "  missed",
                server.connections());
    Trace::setDescriptor(-1);
    return EXIT_SUCCESS;
}
