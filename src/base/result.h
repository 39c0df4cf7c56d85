#pragma once

#include <QString>

#include <optional>
#include <utility>

namespace marlowen {

/// What went wrong: a short dialog title ("Open Failed") and one sentence a person can read. The
/// detail is the reason behind it ("No space left on device"), for logs and the command line; it
/// may be empty.
struct Failure
{
    QString title;
    QString sentence;
    QString detail = {};
};

/// Outcome of work without a value: success, or the Failure that the command that started the work
/// shows. `if (const Outcome done = save(...); !done) show(done.failure());`
class Outcome
{
public:
    Outcome() = default;
    Outcome(Failure failure)
        : m_failure(std::move(failure))
    {
    }
    explicit operator bool() const { return !m_failure; }
    /// Only on failure.
    const Failure &failure() const { return *m_failure; }

private:
    std::optional<Failure> m_failure;
};

/// A value or the Failure that prevented it. Move-only values are taken out with take().
template <typename T>
class Result
{
public:
    Result(T value)
        : m_value(std::move(value))
    {
    }
    Result(Failure failure)
        : m_failure(std::move(failure))
    {
    }
    explicit operator bool() const { return m_value.has_value(); }
    const T &value() const { return *m_value; }
    T take() { return std::move(*m_value); }
    /// Only on failure.
    const Failure &failure() const { return *m_failure; }

private:
    std::optional<T> m_value;
    std::optional<Failure> m_failure;
};

} // namespace marlowen
