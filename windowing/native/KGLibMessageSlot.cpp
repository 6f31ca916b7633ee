#include "windowing/native/KGLibMessageSlot.h"

#include <glib-unix.h>
#include <glib.h>

#include <cerrno>
#include <cstring>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

// Far above a message; a longer datagram is cut.
constexpr size_t kReceiveBuffer = 4096;
// What the queue holds at most, so that a flood cannot eat the memory.
constexpr size_t kMaximumQueued = 4096;
// How long a sender waits for room in the receiver's queue, in ms.
constexpr int kSendPatience = 1000;

bool makeAddress(const std::string& path, sockaddr_un& address)
{
    std::memset(&address, 0, sizeof address);
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return false;
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    return true;
}

int datagramSocket() { return ::socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0); }

// A socket file whose owner is gone refuses a connection.
bool isStale(const sockaddr_un& address)
{
    int probe = datagramSocket();
    if (probe < 0)
        return false;
    bool refused
        = ::connect(probe, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 && errno == ECONNREFUSED;
    ::close(probe);
    return refused;
}

} // namespace

KGLibMessageSlot::~KGLibMessageSlot() { close(); }

std::string KGLibMessageSlot::pathOf(const char* name)
{
    return std::string(g_get_user_runtime_dir()) + "/" + name + ".slot";
}

bool KGLibMessageSlot::open(const char* name)
{
    close();
    sockaddr_un address;
    std::string wanted = pathOf(name);
    if (!makeAddress(wanted, address))
        return false;
    int fd = datagramSocket();
    if (fd < 0)
        return false;
    bool bound = ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    if (!bound && errno == EADDRINUSE && isStale(address)) {
        ::unlink(wanted.c_str());
        bound = ::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    }
    if (!bound) {
        ::close(fd);
        return false;
    }
    socket = fd;
    path = wanted;
    source = g_unix_fd_add(fd, G_IO_IN, reinterpret_cast<GUnixFDSourceFunc>(&KGLibMessageSlot::watch), this);
    return true;
}

void KGLibMessageSlot::close()
{
    if (source)
        g_source_remove(source);
    source = 0;
    if (socket >= 0) {
        ::close(socket);
        ::unlink(path.c_str());
    }
    socket = -1;
    path.clear();
    received.clear();
}

int KGLibMessageSlot::watch(int, unsigned, void* data)
{
    static_cast<KGLibMessageSlot*>(data)->drain();
    return G_SOURCE_CONTINUE;
}

void KGLibMessageSlot::drain()
{
    if (socket < 0)
        return;
    char buffer[kReceiveBuffer];
    for (;;) {
        ssize_t got = ::recv(socket, buffer, sizeof buffer, MSG_DONTWAIT);
        if (got < 0)
            return;
        if (received.size() < kMaximumQueued)
            received.emplace_back(buffer, size_t(got));
    }
}

int32_t KGLibMessageSlot::nextSize()
{
    drain();
    return received.empty() ? -1 : int32_t(received.front().size());
}

int32_t KGLibMessageSlot::read(char* buffer, int32_t size)
{
    drain();
    if (received.empty() || size < 0)
        return -1;
    std::string message = std::move(received.front());
    received.pop_front();
    size_t copied = std::min(message.size(), size_t(size));
    // Messages are counted bytes; the reader sized and zeroed its buffer.
    // NOLINTNEXTLINE(bugprone-not-null-terminated-result)
    std::memcpy(buffer, message.data(), copied);
    return int32_t(message.size());
}

// The receiver's queue is short (a few messages): a full queue is waited
// for, a while, as the receiver empties it.
bool KGLibMessageSlot::send(const char* name, const std::vector<std::string>& messages)
{
    sockaddr_un address;
    if (!makeAddress(pathOf(name), address))
        return false;
    int fd = datagramSocket();
    if (fd < 0)
        return false;
    bool sent = ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    for (size_t index = 0; sent && index < messages.size(); ++index) {
        const std::string& message = messages[index];
        ssize_t written = ::send(fd, message.data(), message.size(), 0);
        if (written < 0 && errno == EAGAIN) {
            pollfd writable { fd, POLLOUT, 0 };
            if (::poll(&writable, 1, kSendPatience) > 0)
                written = ::send(fd, message.data(), message.size(), 0);
        }
        sent = written == ssize_t(message.size());
    }
    ::close(fd);
    return sent;
}
