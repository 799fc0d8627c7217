#include "check/Report.h"

#include "check/Private.h"
#include "driver/Json.h"

#include <algorithm>
#include <format>
#include <map>

namespace {

struct ANSWER_WORDS
{
    ANSWER nAnswer;
    PCWSTR pszName;
    PCSTR pszClass; // of its rows
};

// In the order of the page: first what has to be read.
constexpr ANSWER_WORDS kAnswers[] = {{ANSWER::kDoesNotHold, L"does not hold", "not"},
                                     {ANSWER::kNotTried, L"not tried", "untried"},
                                     {ANSWER::kHolds, L"holds", "holds"}};

const ANSWER_WORDS& WordsFor(ANSWER nAnswer)
{
    return *std::ranges::find(kAnswers, nAnswer, &ANSWER_WORDS::nAnswer);
}

// In quotes, and nothing that is nobody's business.
std::string Told(const std::wstring& szText)
{
    return Quoted(WithoutNames(szText));
}

std::string JsonOfClaim(const CLAIM& claim, const RESULT& result)
{
    std::string json =
        std::format(R"({{"id":{},"claim":{},"how":{},"answer":{})", Quoted(claim.szId), Quoted(claim.szSentence),
                    Quoted(claim.szHow), Quoted(WordsFor(result.nAnswer).pszName));
    if (result.nAnswer == ANSWER::kNotTried) {
        json += R"(,"why":)" + Told(result.szWhy);
    } else {
        json += R"(,"expected":)" + Told(result.szExpected) + R"(,"seen":)" + Told(result.szSeen);
    }
    if (!result.szPicture.empty()) {
        json += R"(,"picture":)" + Told(result.szPicture);
    }
    return json + "}";
}

// Items in lines of their own.
template<typename ITEMS, typename WRITE>
std::string List(const ITEMS& items, WRITE write)
{
    std::string list;
    for (const auto& item : items) {
        list += (list.empty() ? "\n" : ",\n") + write(item);
    }
    return list;
}

std::string ReportAsJson(const CAnswers& answers, const RUN& run)
{
    const auto Count = [&](ANSWER nAnswer) { return answers.Count(nAnswer); };
    std::string json =
        std::format(R"({{"program":{},"cancelled":{},"seconds":{},"holds":{},"does not hold":{},"not tried":{},)",
                    Quoted(run.szProgram), run.bCancelled, run.nSeconds, Count(ANSWER::kHolds),
                    Count(ANSWER::kDoesNotHold), Count(ANSWER::kNotTried));
    json += "\n\"machine\":{" +
            List(run.machine, [](const auto& item) { return Quoted(item.first) + ":" + Told(item.second); });
    json += "},\n\"surroundings\":[" + List(run.told, Told);
    json += "],\n\"claims\":[" +
            List(AllClaims(), [&](const CLAIM& claim) { return JsonOfClaim(claim, answers.Of(claim.szId)); });
    json += "],\n\"cases\":[" + List(answers.m_cases, [](const UNIT_CASE& unit) {
                return std::format(R"({{"program":{},"case":{},"passed":{}}})", Quoted(unit.szProgram),
                                   Quoted(unit.szName), unit.bPassed);
            });
    json += "],\n\"notes\":[" + List(answers.m_notes, Told);
    return json + "]}\n";
}

// With the characters escaped that mean something to a browser.
std::string Html(const std::wstring& szText)
{
    static const std::map<char, std::string> s_entities = {
        {'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};
    std::string html;
    for (const char c : ToUtf8(WithoutNames(szText))) {
        const auto entity = s_entities.find(c);
        html += entity != s_entities.end() ? entity->second : std::string(1, c);
    }
    return html;
}

constexpr std::string_view kHead = R"(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8"><title>KALVO Windows check</title><style>
body { font: 15px/1.4 "Segoe UI", sans-serif; margin: 2em auto; max-width: 1100px; padding: 0 1em; color: #222 }
table { border-collapse: collapse; width: 100% }
td, th { border-bottom: 1px solid #ddd; padding: .3em .5em; text-align: left; vertical-align: top }
td:first-child { white-space: nowrap; font-family: Consolas, monospace }
.answer { white-space: nowrap; font-weight: 600 } .holds .answer { color: #17692b } .not { background: #fdecea }
.not .answer { color: #a4161a } .untried .answer { color: #7a5b00 } .small { color: #666; font-size: 13px }
figure { display: inline-block; margin: 1em 1em 0 0 } img { max-width: 100%; border: 1px solid #ccc }
pre { overflow: auto; background: #f6f6f6; padding: 1em }
</style></head><body><h1>KALVO Windows check</h1>
)";

std::string HtmlOfClaim(const CLAIM& claim, const RESULT& result)
{
    const ANSWER_WORDS& words = WordsFor(result.nAnswer);
    std::string more;
    if (result.nAnswer == ANSWER::kNotTried) {
        more = "<br>" + Html(result.szWhy);
    } else if (result.nAnswer == ANSWER::kDoesNotHold) {
        more = "<br>expected: " + Html(result.szExpected) + "<br>seen: " + Html(result.szSeen);
    }
    return std::format("<tr class=\"{}\"><td>{}</td><td>{} <span class=\"small\">({})</span>{}</td>"
                       "<td class=\"answer\">{}</td></tr>\n",
                       words.pszClass, Html(claim.szId), Html(claim.szSentence), Html(claim.szHow), more,
                       Html(words.pszName));
}

std::string ReportAsHtml(const CAnswers& answers, const RUN& run)
{
    std::string html(kHead);
    html += std::format("<p>{} hold, {} do not, {} were not tried. Version {}, {} seconds{}.</p>\n",
                        answers.Count(ANSWER::kHolds), answers.Count(ANSWER::kDoesNotHold),
                        answers.Count(ANSWER::kNotTried), Html(run.szProgram), run.nSeconds,
                        run.bCancelled ? ", cancelled" : "");
    for (const std::wstring& szTold : run.told) {
        html += "<p>" + Html(szTold) + "</p>\n";
    }
    html += "<h2>Machine</h2><table>\n";
    for (const auto& [szName, szValue] : run.machine) {
        html += "<tr><td>" + Html(szName) + "</td><td>" + Html(szValue) + "</td></tr>\n";
    }
    html += "</table><h2>Claims</h2><table><tr><th>id</th><th>claim</th><th>answer</th></tr>\n";
    for (const ANSWER_WORDS& words : kAnswers) {
        for (const CLAIM& claim : AllClaims()) {
            if (answers.Of(claim.szId).nAnswer == words.nAnswer) {
                html += HtmlOfClaim(claim, answers.Of(claim.szId));
            }
        }
    }
    html += "</table><h2>Pictures</h2>\n";
    for (const PICTURE& picture : answers.m_pictures) {
        html += "<figure><img alt=\"" + Html(picture.szName) + "\" src=\"data:image/png;base64," + picture.png +
                "\"><figcaption>" + Html(picture.szName) + "</figcaption></figure>\n";
    }
    html += "<h2>Notes</h2>\n";
    for (const std::wstring& szNote : answers.m_notes) {
        html += "<pre>" + Html(szNote) + "</pre>\n";
    }
    return html + "</body></html>\n";
}

} // namespace

void WriteReport(const CPath& folder, const CAnswers& answers, const RUN& run)
{
    WriteBytes(folder / L"report.json", ReportAsJson(answers, run));
    WriteBytes(folder / L"report.html", ReportAsHtml(answers, run));
}
