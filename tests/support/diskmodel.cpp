#include <support/diskmodel.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include <fcntl.h>

namespace oblino {

namespace {

QByteArray folderOf(const QByteArray &path)
{
    return path.first(qMax<qsizetype>(path.lastIndexOf('/'), 0));
}

void apply(DiskModel::State &state, const DiskModel::Step &step)
{
    DiskModel::Node &node = state.nodes[step.node];
    if (!step.from.isEmpty())
        state.names.erase(step.from);
    if (!step.to.isEmpty()) {
        state.names[step.to] = step.node;
        node.isFolder = step.isFolder;
    } else if (!step.isOnName()) {
        ++node.changes;
        const off_t end = step.offset + step.data.size();
        node.data.resize(step.data.isEmpty() ? end : qMax<qsizetype>(node.data.size(), end), '\0');
        node.data.replace(step.offset, step.data.size(), step.data);
    }
}

/// The first few of `steps`, all but one of them, and just one.
std::vector<std::vector<DiskModel::Step>> selections(const std::vector<DiskModel::Step> &steps)
{
    std::vector<std::vector<DiskModel::Step>> all{steps};
    for (auto step = steps.begin(); step != steps.end(); ++step) {
        all.emplace_back(steps.begin(), step);
        all.push_back({*step});
        all.push_back(all[all.size() - 2]);
        all.back().insert(all.back().end(), step + 1, steps.end());
    }
    return all;
}

} // namespace

QByteArray DiskModel::State::content(const QByteArray &path) const
{
    const auto name = names.find(path);
    return name == names.end() ? QByteArray() : nodes.at(name->second).data;
}

void DiskModel::State::put(const QByteArray &path, const QByteArray &data)
{
    const auto add = [&](const QByteArray &name, const Node &node) {
        const int number = nodes.rbegin()->first + 1;
        nodes[number] = node;
        names[name] = number;
    };
    for (QByteArray folder = folderOf(path); !names.contains(folder); folder = folderOf(folder))
        add(folder, {true, {}, 0});
    add(path, {false, data, 0});
}

QByteArray DiskModel::State::key() const
{
    QByteArray key;
    for (const auto &[path, node] : names)
        key += path + '\0' + QByteArray::number(nodes.at(node).data.size()) + '\0' + nodes.at(node).data;
    return key;
}

QList<DiskModel::State> DiskModel::Moment::afterPowerCut() const
{
    std::vector<Step> names, pages;
    for (const Step &step : unsynced)
        (step.isOnName() ? names : pages).push_back(step);
    QList<State> states;
    for (const std::vector<Step> &keptNames : selections(names)) {
        State named = durable;
        for (const Step &step : keptNames)
            apply(named, step);
        // A map goes from a folder to what is in it, so one pass loses whole trees.
        std::erase_if(named.names, [&](const auto &name) {
            return name.first != "/disk" && !named.names.contains(folderOf(name.first));
        });
        for (const std::vector<Step> &keptPages : selections(pages)) {
            states.append(named);
            for (const Step &step : keptPages)
                apply(states.last(), step);
        }
    }
    return states;
}

DiskModel::DiskModel()
    : DiskModel(State{{{"/disk", 1}, {"/disk/docs", 2}}, {{1, {true, {}, 0}}, {2, {true, {}, 0}}}})
{
}

DiskModel::DiskModel(const State &state)
    : m_cached(state)
    , m_now{state, {}}
    , m_moments{m_now}
    , m_lastNode(state.nodes.rbegin()->first)
{
}

int DiskModel::answer(int error) const
{
    errno = error;
    return error == 0 ? 0 : -1;
}

void DiskModel::keepMoment()
{
    m_moments.push_back(m_now);
}

void DiskModel::take(const Step &step)
{
    apply(m_cached, step);
    m_now.unsynced.push_back(step);
}

int DiskModel::make(const QByteArray &path, bool isFolder)
{
    if (m_cached.names.contains(path))
        return answer(EEXIST);
    if (!m_cached.names.contains(folderOf(path)))
        return answer(ENOENT);
    take({++m_lastNode, {}, path, isFolder, 0, {}});
    keepMoment();
    return 0;
}

int DiskModel::open(const QByteArray &path, int flags, mode_t)
{
    const bool exists = m_cached.names.contains(path);
    if (exists && (flags & O_CREAT) && (flags & O_EXCL))
        return answer(EEXIST);
    if (!exists && !(flags & O_CREAT))
        return answer(ENOENT);
    if (!exists && make(path, false) == -1)
        return -1;
    m_open.push_back(path);
    const int fd = static_cast<int>(m_open.size()) - 1;
    if ((flags & O_TRUNC) && !m_cached.content(path).isEmpty())
        ftruncate(fd, 0);
    return fd;
}

int DiskModel::close(int)
{
    return 0;
}

int DiskModel::fstat(int fd, struct stat *status)
{
    const int number = m_cached.names.at(m_open.at(static_cast<size_t>(fd)));
    const Node &node = m_cached.nodes.at(number);
    *status = {};
    status->st_ino = static_cast<ino_t>(number);
    status->st_mode = node.isFolder ? S_IFDIR | 0700 : S_IFREG | 0600;
    status->st_size = node.data.size();
    status->st_mtim.tv_sec = node.changes;
    return 0;
}

ssize_t DiskModel::pread(int fd, char *data, size_t size, off_t offset)
{
    const QByteArray content = m_cached.content(m_open.at(static_cast<size_t>(fd)));
    const qsizetype count = qBound<qsizetype>(0, content.size() - offset, static_cast<qsizetype>(size));
    std::memcpy(data, content.constData() + offset, static_cast<size_t>(count));
    return count;
}

ssize_t DiskModel::pwrite(int fd, const char *data, size_t size, off_t offset)
{
    const int node = m_cached.names.at(m_open.at(static_cast<size_t>(fd)));
    const QByteArray bytes(data, static_cast<qsizetype>(size));
    for (qsizetype done = 0; done < bytes.size(); done += pageSize)
        take({node, {}, {}, false, offset + done, bytes.mid(done, pageSize)});
    keepMoment();
    return static_cast<ssize_t>(size);
}

int DiskModel::ftruncate(int fd, off_t size)
{
    take({m_cached.names.at(m_open.at(static_cast<size_t>(fd))), {}, {}, false, size, {}});
    keepMoment();
    return 0;
}

int DiskModel::reserve(int, off_t)
{
    return answer(EOPNOTSUPP);
}

int DiskModel::fsync(int fd)
{
    if (++m_syncs == m_skippedSync)
        return 0;
    const bool isFailing = m_syncs == m_failedSync;
    const QByteArray path = m_open.at(static_cast<size_t>(fd));
    const int node = m_cached.names.at(path);
    std::erase_if(m_now.unsynced, [&](const Step &step) {
        const bool isSynced =
            step.isOnName() ? folderOf(step.from) == path || folderOf(step.to) == path : step.node == node;
        if (isSynced && !isFailing)
            apply(m_now.durable, step);
        return isSynced && !(isFailing && step.isOnName());
    });
    keepMoment();
    return answer(isFailing ? EIO : 0);
}

int DiskModel::rename(const QByteArray &from, const QByteArray &to)
{
    if (!m_cached.names.contains(from))
        return answer(ENOENT);
    take({m_cached.names.at(from), from, to, false, 0, {}});
    keepMoment();
    return 0;
}

int DiskModel::unlink(const QByteArray &path)
{
    if (!m_cached.names.contains(path))
        return answer(ENOENT);
    take({m_cached.names.at(path), path, {}, false, 0, {}});
    keepMoment();
    return 0;
}

int DiskModel::mkdir(const QByteArray &path, mode_t)
{
    return make(path, true);
}

int DiskModel::rmdir(const QByteArray &path)
{
    return unlink(path);
}

} // namespace oblino
