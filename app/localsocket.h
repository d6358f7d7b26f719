#pragma once

#include <QByteArray>
#include <QString>

#include <chrono>

/// A stream between two programs of this machine, or what waits for the others at an address;
/// closed with this object.
///
/// The system's own calls: the library for networks would bring in eight more with it, for which
/// each start had to wait.
class LocalSocket
{
public:
    LocalSocket() = default;
    explicit LocalSocket(int descriptor);
    LocalSocket(LocalSocket&& other) noexcept;
    LocalSocket& operator=(LocalSocket&& other) noexcept;
    ~LocalSocket();

    /// Waits for others at a file that is made for it. Where that fails the socket is not open and
    /// errno says why.
    [[nodiscard]] static LocalSocket listenAt(const QString& address);

    /// Speaks to who listens at the address; no call of the system takes longer than its patience.
    [[nodiscard]] static LocalSocket connectTo(const QString& address,
                                               std::chrono::milliseconds patience);

    /// The next of those who called; not open where nobody does. Never waits, nor do its reads.
    [[nodiscard]] LocalSocket accept() const;

    [[nodiscard]] bool isOpen() const { return fd >= 0; }

    [[nodiscard]] int descriptor() const { return fd; }

    void setPatience(std::chrono::milliseconds patience) const;

    /// \return whether all of it went out
    [[nodiscard]] bool write(const QByteArray& bytes) const;

    enum class Got
    {
        Bytes, ///< some more
        NothingYet,
        End ///< the other side has closed, or the line is broken
    };

    /// Adds what has come to the bytes, at most so much of it.
    [[nodiscard]] Got read(QByteArray& bytes, int most) const;

private:
    int fd = -1;
};
