// Replaces a function that the program imports, for the length of a scope. A replacement that nobody
// called fails the test. See README.md.
#pragma once

#include "tests/kit/ImportTable.h"
#include "tests/kit/Journal.h"
#include "tests/kit/Unreplaced.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <ostream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

// The type of a replacement of a function, by the name under which it is imported (CreateFileW).
#define REPLACED(function) kit::Replaced<#function, decltype(&::function)>

namespace kit {

// An answer: gives this result, and leaves this last error behind when there is one.
template<typename T>
auto Returns(T result, std::optional<DWORD> error = std::nullopt)
{
    return [result, error](auto&&...) {
        if (error) {
            unreplaced::SetLastError(*error);
        }
        return result;
    };
}

// An answer: what the next replacement outside gives, or else the function itself.
struct PassOn
{
};

template<typename Inner>
struct OptionalAnswer
{
    Inner answer;
    bool bNoted = true;
    bool bFails = false;
};

// Around an answer: need not be called.
template<typename Inner = PassOn>
OptionalAnswer<Inner> Maybe(Inner answer = {})
{
    return {std::move(answer)};
}

// Around an answer: need not be called, and leaves no lines in the journal.
template<typename Inner = PassOn>
OptionalAnswer<Inner> Quietly(Inner answer = {})
{
    return {std::move(answer), false};
}

// An answer: must not be called. A call fails the test and is passed on.
inline OptionalAnswer<PassOn> Never()
{
    return {{}, true, true};
}

// Answers for the first, second, third call. One more call than answers fails the test and gets the
// last answer again.
template<typename... Answers>
struct InTurn
{
    explicit InTurn(Answers... args) : answers(std::move(args)...) {}
    std::tuple<Answers...> answers;
};

// Among the arguments that a test expects: any.
struct AnyArgument
{
    template<typename T>
    friend bool operator==(const T&, AnyArgument)
    {
        return true;
    }
    friend void PrintTo(AnyArgument, std::ostream* pOut)
    {
        *pOut << "anything";
    }
};
inline constexpr AnyArgument kAny;

// The threads whose calls are the test's: the one that runs it, and that of a body that may end the
// process. Calls from any other, such as those of the test framework, reach the real function and
// leave no trace.
inline const DWORD g_dwMainThread = unreplaced::GetCurrentThreadId();
inline DWORD g_dwBodyThread = 0;

// A function's name as a template argument.
template<size_t t_nSize>
struct FunctionName
{
    // NOLINTNEXTLINE(google-explicit-constructor): a text literal stands for it
    consteval FunctionName(const char (&szName)[t_nSize])
    {
        std::copy_n(szName, t_nSize, sz);
    }
    char sz[t_nSize];
};

// How an argument is kept: wide texts as they were at the time of the call, "(null)" for none, "#5" for a resource id;
// everything else as it is.
inline std::wstring Kept(const wchar_t* psz)
{
    if (psz == nullptr) {
        return L"(null)";
    }
    return IS_INTRESOURCE(psz) ? L"#" + std::to_wstring(reinterpret_cast<ULONG_PTR>(psz)) : psz;
}
template<typename T>
T Kept(T argument)
{
    return argument;
}

template<FunctionName t_name, typename Function>
class Replaced;

template<FunctionName t_name, typename Result, typename... Args>
class Replaced<t_name, Result (*)(Args...)>
{
public:
    using Answer = std::function<Result(Args...)>;

    // Only listens: every call is passed on.
    Replaced() : Replaced(PassOn()) {}

    explicit Replaced(PassOn passOn) : m_answers{MakeAnswer(passOn)}
    {
        Install();
    }

    template<typename Inner>
    explicit Replaced(OptionalAnswer<Inner> optional) : Replaced(std::move(optional.answer))
    {
        m_bOptional = true;
        m_bNoted = optional.bNoted;
        m_bFails = optional.bFails;
    }

    // One answer for every call: Returns(…), or anything that takes the arguments.
    template<typename Callable>
        requires std::is_invocable_v<Callable, Args...>
    explicit Replaced(Callable answer) : m_answers{MakeAnswer(std::move(answer))}
    {
        Install();
    }

    template<typename... Answers>
    explicit Replaced(InTurn<Answers...> inTurn) : m_bInTurn(true)
    {
        std::apply([this](auto&... answer) { (m_answers.push_back(MakeAnswer(std::move(answer))), ...); },
                   inTurn.answers);
        Install();
    }

    Replaced(const Replaced&) = delete;
    Replaced& operator=(const Replaced&) = delete;

    ~Replaced()
    {
        RestoreImport(m_slots);
        s_pCurrent = m_pOuter;
        if (m_calls.empty() && !m_bOptional) {
            ADD_FAILURE() << t_name.sz << " was never called";
        }
    }

    size_t Calls() const
    {
        return m_calls.size();
    }

    // The arguments of a call, counted from 0, as they are kept.
    auto Arguments(size_t nCall = 0) const
    {
        if (nCall < m_calls.size()) {
            return m_calls[nCall];
        }
        ADD_FAILURE() << t_name.sz << " was called only " << m_calls.size() << " times";
        return KeptArguments();
    }

    // Argument t_nIndex of it, counted from 0 too.
    template<size_t t_nIndex>
    auto Arg(size_t nCall = 0) const
    {
        return std::get<t_nIndex>(Arguments(nCall));
    }

    // What would have been called without this replacement: the next one outside, or the function.
    Result Next(Args... args) const
    {
        return m_pOuter != nullptr ? m_pOuter->Call(args...) : Real(args...);
    }

    // The function itself.
    static Result Real(Args... args)
    {
        return s_pReal(args...);
    }

private:
    using Function = Result (*)(Args...);
    using KeptArguments = std::tuple<decltype(Kept(std::declval<Args>()))...>;

    Answer MakeAnswer(PassOn)
    {
        return [this](Args... args) { return Next(args...); };
    }

    template<typename Callable>
    static Answer MakeAnswer(Callable answer)
    {
        return Answer(std::move(answer));
    }

    void Install()
    {
        m_pOuter = s_pCurrent;
        s_pCurrent = this;
        m_slots = RedirectImport(t_name.sz, reinterpret_cast<void*>(&Thunk));
        if (m_slots.empty()) {
            ADD_FAILURE() << t_name.sz << " is not imported: nothing calls it";
        } else if (s_pReal == nullptr) {
            s_pReal = reinterpret_cast<Function>(m_slots.front().pOriginal);
        }
    }

    // What stands in the import table.
    static Result Thunk(Args... args)
    {
        const DWORD dwThread = unreplaced::GetCurrentThreadId();
        const bool bOurs = dwThread == g_dwMainThread || dwThread == g_dwBodyThread;
        return bOurs ? s_pCurrent->Call(args...) : s_pReal(args...);
    }

    // The answer finds the last error as the caller left it, and the caller as the answer left it.
    Result Call(Args... args)
    {
        const DWORD dwLastError = unreplaced::GetLastError();
        const Answer& answer = Keep(args...);
        unreplaced::SetLastError(dwLastError);
        return answer(args...);
    }

    const Answer& Keep(Args... args)
    {
        const size_t nCall = m_calls.size();
        m_calls.emplace_back(Kept(args)...);
        if (m_bNoted) {
            Note(t_name.sz);
        }
        if (m_bFails) {
            ADD_FAILURE() << t_name.sz << " was called";
        }
        if (m_bInTurn && nCall >= m_answers.size()) {
            ADD_FAILURE() << t_name.sz << " was called more than " << m_answers.size() << " times";
        }
        return m_answers[std::min(nCall, m_answers.size() - 1)];
    }

    static inline Replaced* s_pCurrent = nullptr;
    static inline Function s_pReal = nullptr;

    std::vector<Answer> m_answers;
    bool m_bInTurn = false;
    bool m_bOptional = false;
    bool m_bNoted = true;
    bool m_bFails = false;
    std::vector<KeptArguments> m_calls;
    std::vector<ImportSlot> m_slots;
    Replaced* m_pOuter = nullptr;
};

// Functions declared never to throw are replaced like any other.
template<FunctionName t_name, typename Result, typename... Args>
class Replaced<t_name, Result (*)(Args...) noexcept> : public Replaced<t_name, Result (*)(Args...)>
{
public:
    using Replaced<t_name, Result (*)(Args...)>::Replaced;
};

} // namespace kit
