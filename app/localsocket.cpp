#include "app/localsocket.h"

#include <QFile>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <optional>
#include <utility>

namespace {

/// Nothing where the name is longer than the system takes.
std::optional<sockaddr_un> asAddress(const QString& file)
{
    const QByteArray name = QFile::encodeName(file);
    sockaddr_un address {};
    address.sun_family = AF_UNIX;
    if (size_t(name.size()) >= sizeof address.sun_path) {
        errno = ENAMETOOLONG;
        return std::nullopt;
    }
    std::copy(name.begin(), name.end(), std::begin(address.sun_path));
    return address;
}

/// A call of the system on a new socket at this address: bind() or connect().
template <typename Call>
LocalSocket opened(const QString& file, int flags, Call call)
{
    const auto address = asAddress(file);
    LocalSocket socket(address ? ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | flags, 0) : -1);
    const auto* plain = reinterpret_cast<const sockaddr*>(address ? &*address : nullptr);
    return socket.isOpen() && call(socket, plain, socklen_t(sizeof *address)) ? std::move(socket)
                                                                              : LocalSocket();
}

} // namespace

LocalSocket::LocalSocket(int descriptor)
    : fd(descriptor)
{
}

LocalSocket::LocalSocket(LocalSocket&& other) noexcept
    : fd(std::exchange(other.fd, -1))
{
}

LocalSocket& LocalSocket::operator=(LocalSocket&& other) noexcept
{
    std::swap(fd, other.fd);
    return *this;
}

LocalSocket::~LocalSocket()
{
    if (isOpen()) {
        const int reason = errno; // which somebody may still want to read
        ::close(fd);
        errno = reason;
    }
}

LocalSocket LocalSocket::listenAt(const QString& address)
{
    constexpr int kWaiting = 50;
    return opened(address, SOCK_NONBLOCK,
                  [](const LocalSocket& socket, const sockaddr* at, socklen_t size) {
                      return ::bind(socket.fd, at, size) == 0 && ::listen(socket.fd, kWaiting) == 0;
                  });
}

LocalSocket LocalSocket::connectTo(const QString& address, std::chrono::milliseconds patience)
{
    return opened(address, 0,
                  [patience](const LocalSocket& socket, const sockaddr* at, socklen_t size) {
                      socket.setPatience(patience);
                      return ::connect(socket.fd, at, size) == 0;
                  });
}

LocalSocket LocalSocket::accept() const
{
    return LocalSocket(::accept4(fd, nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
}

void LocalSocket::setPatience(std::chrono::milliseconds patience) const
{
    constexpr std::chrono::milliseconds kLeast {1}; // none at all would be for ever
    const auto us = std::chrono::microseconds(std::max(patience, kLeast)).count();
    const timeval time {static_cast<time_t>(us / 1'000'000),
                        static_cast<suseconds_t>(us % 1'000'000)};
    ::setsockopt(fd, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof time);
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &time, sizeof time);
}

bool LocalSocket::write(const QByteArray& bytes) const
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t sent = ::send(fd, bytes.constData() + done, size_t(bytes.size() - done),
                                    MSG_NOSIGNAL); // the other side may be gone
        if (sent < 0 && errno != EINTR) {
            return false;
        }
        done += int(std::max<ssize_t>(sent, 0));
    }
    return true;
}

LocalSocket::Got LocalSocket::read(QByteArray& bytes, int most) const
{
    const int before = bytes.size();
    bytes.resize(before + most);
    ssize_t got = 0;
    do {
        got = ::recv(fd, bytes.data() + before, size_t(most), 0);
    } while (got < 0 && errno == EINTR);
    bytes.resize(before + int(std::max<ssize_t>(got, 0)));
    if (got > 0) {
        return Got::Bytes;
    }
    return got < 0 && (errno == EAGAIN || errno == EWOULDBLOCK) ? Got::NothingYet : Got::End;
}
