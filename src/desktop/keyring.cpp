#include <desktop/keyring.h>

#include <qt6keychain/keychain.h>

#include <utility>

namespace oblino {

namespace {

PasswordStore::Outcome outcomeOf(const QKeychain::Job &job)
{
    switch (job.error()) {
    case QKeychain::NoError:
        return PasswordStore::Outcome::Done;
    case QKeychain::EntryNotFound:
        return PasswordStore::Outcome::NoneStored;
    default:
        return PasswordStore::Outcome::NoKeyring;
    }
}

// A job deletes itself. It has no parent, since it must outlive what the keyring is still doing for it.
template<typename Job, typename OnFinished>
void start(Job *job, const QString &key, OnFinished onFinished)
{
    job->setInsecureFallback(false);
    job->setKey(key);
    QObject::connect(job, &QKeychain::Job::finished, job, [job, onFinished] { onFinished(*job); });
    job->start();
}

} // namespace

Keyring::Keyring(QString service)
    : m_service(std::move(service))
{
}

void Keyring::read(const QString &key, ReadHandler handler)
{
    start(new QKeychain::ReadPasswordJob(m_service), key,
          [handler = std::move(handler)](const QKeychain::ReadPasswordJob &job) {
              const Outcome outcome = outcomeOf(job);
              handler(outcome, outcome == Outcome::Done ? job.textData() : QString());
          });
}

void Keyring::write(const QString &key, const QString &password, Handler handler)
{
    auto *job = new QKeychain::WritePasswordJob(m_service);
    job->setTextData(password);
    start(job, key, [handler = std::move(handler)](const auto &done) { handler(outcomeOf(done)); });
}

void Keyring::remove(const QString &key, Handler handler)
{
    start(new QKeychain::DeletePasswordJob(m_service), key,
          [handler = std::move(handler)](const auto &done) { handler(outcomeOf(done)); });
}

} // namespace oblino
