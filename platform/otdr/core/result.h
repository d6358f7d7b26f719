#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <variant>

namespace otdr {

enum class ErrorCode
{
    CannotOpen, ///< the file cannot be opened, or is not a regular file
    CannotRead, ///< opened, but reading failed
    TooLarge, ///< larger than any trace file we believe in
    NotATrace, ///< neither a SOR file nor a snapshot
    Damaged, ///< the right kind of file, but unusable
    CannotWrite, ///< the file could not be written; what was there before is still there
};

/// Why an operation gave no result: the code for programs, the message for the log.
struct Error
{
    ErrorCode code = ErrorCode::Damaged;
    std::string message;
    std::size_t offset = 0; ///< byte position in the input, 0 where it has no meaning
};

/// A value, or the error that kept it from being made.
template <typename T>
class Result
{
public:
    Result(T value) // NOLINT(google-explicit-constructor): return statements stay plain
        : state(std::move(value))
    {
    }

    Result(Error error) // NOLINT(google-explicit-constructor)
        : state(std::move(error))
    {
    }

    [[nodiscard]] bool ok() const { return std::holds_alternative<T>(state); }

    explicit operator bool() const { return ok(); }

    /// The value. Only where ok().
    [[nodiscard]] const T& value() const { return std::get<T>(state); }

    [[nodiscard]] T& value() { return std::get<T>(state); }

    const T* operator->() const { return &value(); }

    T* operator->() { return &value(); }

    const T& operator*() const { return value(); }

    T& operator*() { return value(); }

    /// The error. Only where not ok().
    [[nodiscard]] const Error& error() const { return std::get<Error>(state); }

private:
    std::variant<T, Error> state;
};

} // namespace otdr
