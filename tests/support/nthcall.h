#pragma once

#include <QProcessEnvironment>
#include <QStringList>
#include <QTemporaryDir>

namespace testing_support {

struct NthCallState;

/// Programs that are started with its environment have their calls of the file system below some
/// directories counted, over all processes together, and the nth of them fails.
class NthCall
{
public:
    explicit NthCall(const QStringList& dirs);
    ~NthCall();
    NthCall(const NthCall&) = delete;
    NthCall& operator=(const NthCall&) = delete;

    /// Begins to count anew. The nth call (none for 0) fails with an error ("28"), is only half
    /// done
    /// ("short", for writes), so that also the room is used up ("full"), kills its process
    /// ("kill"), with the loss of what was not flushed ("power"), or never returns ("hang").
    [[nodiscard]] QProcessEnvironment start(int nth, const QString& how) const;

    /// The names of the calls so far, such as "rename".
    [[nodiscard]] QStringList calls() const;

private:
    QStringList dirs;
    QTemporaryDir place;
    NthCallState* state = nullptr;
};

} // namespace testing_support
