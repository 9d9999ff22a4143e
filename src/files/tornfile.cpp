#include <files/tornfile.h>

#include <algorithm>

namespace oblino {

namespace {

constexpr qsizetype blockSize = 4096;

/// The part of `whole` that lies at `offset`, of at most `size` bytes.
QByteArrayView partOf(QByteArrayView whole, qsizetype offset, qsizetype size)
{
    const qsizetype start = std::min(offset, whole.size());
    return whole.sliced(start, std::min(size, whole.size() - start));
}

bool isPartOfBefore(QByteArrayView block, QByteArrayView before, qsizetype offset)
{
    const QByteArrayView part = partOf(before, offset, block.size());
    const QByteArrayView rest = block.sliced(part.size());
    return block.startsWith(part) && std::ranges::all_of(rest, [](char byte) { return byte == '\0'; });
}

/// How many bytes of the block are those of `after`.
qsizetype lengthOfAfter(QByteArrayView block, QByteArrayView after, qsizetype offset)
{
    return std::ranges::mismatch(block, partOf(after, offset, block.size())).in1 - block.begin();
}

} // namespace

bool isTornBetween(QByteArrayView found, QByteArrayView before, QByteArrayView after)
{
    if (found.size() > std::max(before.size(), after.size()))
        return false;
    bool hasSeam = false;
    for (qsizetype offset = 0; offset < found.size(); offset += blockSize) {
        const QByteArrayView block = partOf(found, offset, blockSize);
        const qsizetype seam = lengthOfAfter(block, after, offset);
        if (seam == block.size() || isPartOfBefore(block, before, offset))
            continue;
        if (hasSeam || !isPartOfBefore(block.sliced(seam), before, offset + seam))
            return false;
        hasSeam = true;
    }
    return true;
}

} // namespace oblino
