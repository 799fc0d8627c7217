// The answers of a hostile device.
#pragma once

#include "Reply.h"
#include "Service.h"

#include <algorithm>
#include <string_view>
#include <utility>

// Ignores what arrives and answers at once.
class CFlood : public CService
{
public:
    explicit CFlood(CReply reply) : m_reply(std::move(reply)) {}

    void Take(ByteView /*bytes*/) override {}

    std::string NextPiece() override
    {
        return m_reply.NextPiece();
    }

    bool IsDone() const override
    {
        return m_reply.IsGiven();
    }

private:
    CReply m_reply;
};

// Lets the computer copy a file and forgets it. That is talked about in words of four letters and a number each: there
// is no such file yet, and now it has arrived.
class CBlindCopy : public CService
{
public:
    static constexpr std::string_view SERVICE = "sync:";

    void Take(ByteView bytes) override
    {
        const std::string_view text = TextOf(bytes);
        const std::string_view last = text.substr(text.size() - std::min(text.size(), WORD));
        if (last.starts_with("DONE")) {
            m_answer = {"OKAY\0\0\0\0", WORD};
        }
        m_bDone = last.starts_with("QUIT");
    }

    std::string NextPiece() override
    {
        return std::string(std::exchange(m_answer, {}));
    }

    bool IsDone() const override
    {
        return m_bDone;
    }

private:
    static constexpr std::size_t WORD = 8;

    std::string_view m_answer{"STAT\0\0\0\0\0\0\0\0\0\0\0\0", 16}; // before it is asked
    bool m_bDone = false;
};
