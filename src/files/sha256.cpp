#include <files/sha256.h>

#include <openssl/sha.h>

namespace oblino {

// Qt's own takes some ten times as long, which is felt when a large list is saved.
QByteArray sha256(QByteArrayView bytes)
{
    QByteArray hash(sha256Size, Qt::Uninitialized);
    SHA256(reinterpret_cast<const unsigned char *>(bytes.data()), static_cast<size_t>(bytes.size()),
           reinterpret_cast<unsigned char *>(hash.data()));
    return hash;
}

} // namespace oblino
