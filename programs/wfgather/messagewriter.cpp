#include "programs/wfgather/messagewriter.h"

#include <QByteArray>

#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <thread>

namespace gather {

namespace {

using std::chrono::steady_clock;

constexpr std::chrono::seconds kPatience(1);
constexpr std::chrono::microseconds kPoll(200);

bool isPipeDescriptor(int descriptor)
{
    struct stat status
    {
    };

    return fstat(descriptor, &status) == 0 && S_ISFIFO(status.st_mode);
}

/// Whether the reader of a pipe has closed it.
bool isAbandoned(int descriptor)
{
    pollfd pipe {descriptor, 0, 0};
    return poll(&pipe, 1, 0) > 0 && (pipe.revents & POLLERR) != 0;
}

/// A number as every locale reads it.
std::string text(double number)
{
    return QByteArray::number(number, 'g', 12).toStdString();
}

} // namespace

MessageWriter::MessageWriter(int descriptor)
    : descriptor(descriptor)
    , isPipe(isPipeDescriptor(descriptor))
{
}

void MessageWriter::tracesPrepared(std::size_t count)
{
    send("C * " + std::to_string(count));
}

void MessageWriter::traceStarts(std::size_t number, std::size_t count, const TraceParams& params)
{
    send("M { " + std::to_string(number) + '/' + std::to_string(count) + " wavelength "
         + std::to_string(params.wavelength_nm) + " duration " + std::to_string(params.duration_s)
         + " ior " + text(params.ior) + " helix " + text(params.helix_percent) + " distance "
         + text(params.distance_m) + " pulse " + std::to_string(params.pulse_ns) + " rbs "
         + text(params.backscatter_dB));
}

void MessageWriter::tick(int remaining_s, int elapsed_s)
{
    send("M * RT " + std::to_string(remaining_s) + " ET " + std::to_string(elapsed_s));
}

void MessageWriter::waitUntilRead()
{
    if (!isPipe || !connected) {
        return;
    }
    const auto latest = steady_clock::now() + kPatience;
    int unread = 0;
    while (ioctl(descriptor, FIONREAD, &unread) == 0 && unread > 0 && !isAbandoned(descriptor)
           && steady_clock::now() < latest) {
        std::this_thread::sleep_for(kPoll);
    }
    connected = !isAbandoned(descriptor);
}

void MessageWriter::send(const std::string& text)
{
    if (!connected) {
        return;
    }
    const std::string message = std::to_string(++counter) + ' ' + text + ";\n";
    std::size_t written = 0;
    while (connected && written < message.size()) { // a pipe takes so little at once
        const ssize_t count = write(descriptor, message.data() + written, message.size() - written);
        if (count > 0) {
            written += static_cast<std::size_t>(count);
        } else if (errno != EINTR) {
            connected = false;
        }
    }
}

} // namespace gather
