#include <support/privatebus.h>
#include <support/table.h>
#include <support/testmain.h>

#include <controls/sharingmenu.h>
#include <desktop/emailportal.h>

#include <QDBusArgument>
#include <QDBusUnixFileDescriptor>
#include <QMenu>
#include <QMessageBox>
#include <QTemporaryDir>

using namespace oblino;
using namespace Qt::Literals::StringLiterals;

namespace {

class MailPortal : public QDBusVirtualObject
{
public:
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &bus) override
    {
        const QVariantList call = message.arguments();
        if (call == QVariantList{u"org.freedesktop.portal.Email"_s, u"version"_s})
            return --absences < 0 && bus.send(message.createReply(QVariant::fromValue(QDBusVariant(4U))));
        if (message.member() != "ComposeEmail"_L1)
            return false;
        const auto options = qdbus_cast<QVariantMap>(call.at(1));
        body = options[u"body"_s].toString();
        const auto files = qdbus_cast<QList<QDBusUnixFileDescriptor>>(options[u"attachment_fds"_s]);
        attached = QFileInfo(u"/proc/self/fd/%1"_s.arg(files.at(0).fileDescriptor())).symLinkTarget();
        if (response < 0)
            return bus.send(message.createErrorReply(QDBusError::AccessDenied, u"not now"_s));
        const QString caller = message.service().mid(1).replace(u'.', u'_');
        const QString request =
            u"%1/request/%2/%3"_s.arg(message.path(), caller, options[u"handle_token"_s].toString());
        bus.send(message.createReply(QVariant::fromValue(QDBusObjectPath(request))));
        return bus.send(
            QDBusMessage::createSignal(request, u"org.freedesktop.portal.Request"_s, u"Response"_s)
            << uint(response) << QVariantMap());
    }
    QString introspect(const QString &) const override { return {}; }

    int absences = 0; // questions that are answered as if it was not there
    int response = 0; // -1: the call fails
    QString body;
    QString attached; // path
};

using Row = Table<int, QString, QString>; // the portal's response, the folder, what is told

} // namespace

class tst_emailportal : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        m_picture.fill(Qt::red);
        QVERIFY(m_portalBus.registerVirtualObject(u"/org/freedesktop/portal/desktop"_s, &m_portal));
        QVERIFY(m_portalBus.registerService(u"org.freedesktop.portal.Desktop"_s));
    }
    void init() { m_portal.attached.clear(); }

    void handsOverTextAndPictureInAFileThatGoesAgain()
    {
        QWidget window;
        auto sharing = std::make_unique<SharingMenu>(m_programBus, m_drafts);
        m_portal.response = 0;
        openDraft(*sharing, window);
        QTRY_COMPARE(QFileInfo(m_portal.attached).fileName(), u"whiteboard.png"_s);
        QCOMPARE(m_portal.body, u"above\nbelow\n"_s);
        QCOMPARE(QImage(m_portal.attached, "PNG"), m_picture);
        const QFileInfo folder(QFileInfo(m_portal.attached).path());
        QCOMPARE(folder.path(), m_drafts);
        QCOMPARE(folder.permissions() & QFile::Permissions(0x0077), QFile::Permissions());

        openDraft(*sharing, window);
        QTRY_VERIFY(!m_portal.attached.startsWith(folder.filePath()));
        QVERIFY(!QFile::exists(folder.filePath()) && QFile::exists(m_portal.attached));
        sharing->forget();
        QVERIFY(!QFile::exists(m_portal.attached));
        openDraft(*sharing, window);
        QTRY_VERIFY(QFile::exists(m_portal.attached));
        sharing.reset();
        QVERIFY(!QFile::exists(m_drafts));
    }

    void tellsThatNoDraftWasOpened_data()
    {
        const Row row;
        row("opened", 0, m_drafts, {});
        row("cancelled, as the user knows", 1, m_drafts, {});
        row("ended otherwise", 2, m_drafts, u"the desktop has opened no draft."_s);
        row("refused", -1, m_drafts, u"not now"_s);
        row("nowhere to write", 0, u"/dev/null/none"_s, u"Not a directory"_s);
    }
    void tellsThatNoDraftWasOpened()
    {
        const auto [response, folder, words] = Row::cells();
        m_portal.response = response;
        QWidget window;
        SharingMenu sharing(m_programBus, folder);
        openDraft(sharing, window);
        const auto told = [&window] { return window.findChild<QMessageBox *>(); };
        QTRY_VERIFY(told() || !m_portal.attached.isEmpty());
        bool isLater = false; // than all answers before
        EmailPortal(m_programBus, m_home.filePath(u"other"_s)).whenPresent(&window, [&isLater] {
            isLater = true;
        });
        QTRY_VERIFY(isLater);
        QCOMPARE(told() ? told()->text().section(u": "_s, 1) : QString(), words);
    }

    void offersTheTextAloneWithoutThePortal()
    {
        QWidget window;
        SharingMenu sharing(m_programBus, m_drafts);
        m_portal.absences = 1;
        const QMenu *without = openMenu(sharing, window);
        const QMenu *with = openMenu(sharing, window);
        QTRY_VERIFY(offersWhole(with));
        QVERIFY(!offersWhole(without));
    }

private:
    // Of its two entries for a draft, the first is that of the text alone.
    static bool offersWhole(const QMenu *menu)
    {
        return !menu->actions().at(1)->isVisible() && menu->actions().at(2)->isVisible();
    }
    QMenu *openMenu(SharingMenu &sharing, QWidget &window) const
    {
        sharing.show({u"above\n"_s, m_picture, u"below\n"_s}, &window, SharingPicker::Edge::Left);
        return window.findChildren<QMenu *>().last();
    }
    void openDraft(SharingMenu &sharing, QWidget &window) const
    {
        const QMenu *menu = openMenu(sharing, window);
        QTRY_VERIFY(offersWhole(menu));
        menu->actions().at(2)->trigger();
    }

    PrivateBus m_bus;
    QDBusConnection m_portalBus = m_bus.connection(u"mail portal"_s);
    QDBusConnection m_programBus = m_bus.connection(u"sharing program"_s);
    QTemporaryDir m_home;
    QString m_drafts = m_home.filePath(u"drafts"_s);
    QImage m_picture = QImage(2, 2, QImage::Format_RGB32);
    MailPortal m_portal;
};

OBLINO_TEST(tst_emailportal, QApplication)

#include "tst_emailportal.moc"
