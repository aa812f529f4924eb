#include "simulator/script.h"

#include <stdlib.h>

#include <algorithm>
#include <regex>
#include <stdexcept>
#include <tuple>

#include "simulator/device.h"

namespace kalvorn::device {

namespace {

using std::string;
using Words = std::vector<string>;

struct ServiceMethod {
    const char* name;
    bool givesOneNumberOverHidl;
};

constexpr ServiceMethod kMethods[] = {
#include "service_methods.inc"
};

Words MethodNames() {
    Words names;
    for (const ServiceMethod& method : kMethods) names.emplace_back(method.name);
    return names;
}

/** The last one outside the texts of the answer; others may stand in an argument. */
size_t FindArrow(const string& text) {
    const size_t last = text.rfind(" -> ");
    for (size_t arrow = last; arrow != string::npos; arrow = text.rfind(" -> ", arrow - 1)) {
        if (std::count(text.begin() + static_cast<std::ptrdiff_t>(arrow), text.end(), '\'') % 2 ==
            0) {
            return arrow;
        }
        if (arrow == 0) break;
    }
    return last;
}

int32_t ParseCode(const string& word) {
    char* end = nullptr;
    const long long code = strtoll(word.c_str(), &end, 10);
    if (word.empty() || *end != '\0' || code != static_cast<int32_t>(code)) {
        Refuse("not a code, \"fails\", \"hangs\" or \"after SECONDS\": " + word);
    }
    return static_cast<int32_t>(code);
}

void ReadAnswer(Words words, Rule* rule) {
    if (words.size() >= 2 && words[0] == "after") {
        const auto seconds = ParseSeconds(words[1]);
        if (!seconds) Refuse("not a number of seconds: " + words[1]);
        rule->delay = std::chrono::milliseconds(static_cast<int64_t>(*seconds * 1000));
        words.erase(words.begin(), words.begin() + 2);
        if (words.empty()) return;
    }
    if (words.empty()) Refuse("an answer is missing");
    const bool isAlone = words.size() == 1;
    if (isAlone && words[0] == "hangs") {
        rule->hangs = true;
    } else if (isAlone && words[0] == "fails") {
        rule->answer = Fault::kTransport;
    } else {
        if (words.size() > 3) Refuse("an answer is a code and up to two texts, each in ''");
        words.resize(3);
        rule->answer = Answer(ParseCode(words[0]), words[1], words[2]);
    }
}

}  // namespace

void Refuse(const string& why) {
    throw std::runtime_error(why);
}

bool Contains(const Words& names, const string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

string Joined(const Words& words) {
    string text;
    for (size_t i = 0; i < words.size(); i++) text += (i == 0 ? "" : ", ") + words[i];
    return text;
}

bool CallPattern::Matches(Backend itsBackend, const string& itsService, const string& itsMethod,
                          const Words& itsArguments) const {
    return method == itsMethod && (!backend || *backend == itsBackend) &&
           (service.empty() || service == itsService) &&
           (!arguments || *arguments == Joined(itsArguments));
}

int CallPattern::Precision() const {
    return (backend ? 1 : 0) + (service.empty() ? 0 : 1) + (arguments ? 1 : 0);
}

CallPattern ParseCallPattern(const string& text) {
    static const std::regex pattern(R"((?:(aidl|hidl) )?(?:([^ .(]*)\.)?([^ .(]*))");
    const size_t open = text.find('(');
    std::smatch match;
    const string names = text.substr(0, open);
    if (!std::regex_match(names, match, pattern) || (open != string::npos && text.back() != ')')) {
        Refuse("not a call, such as aidl factory.readNv(7): " + text);
    }
    CallPattern calls;
    if (match[1].matched) calls.backend = match[1] == "aidl" ? Backend::kAidl : Backend::kHidl;
    calls.service = match[2];
    calls.method = match[3];
    if (open != string::npos) calls.arguments = text.substr(open + 1, text.size() - open - 2);
    if (match[2].matched) CheckName("service", calls.service, Device::Services());
    CheckName("method", calls.method, MethodNames());
    if (calls.backend && match[2].matched && !Device::Get().Has(*calls.backend, calls.service)) {
        Refuse("no service " + calls.service + " over " + string(match[1]));
    }
    return calls;
}

Rule ParseRule(const string& text) {
    static const std::regex counted("(?:once|([1-9][0-9]{0,8}) times) (.*)");
    const size_t arrow = FindArrow(text);
    if (arrow == string::npos) Refuse("an answer is missing, after ->");
    Rule rule;
    string calls = text.substr(0, arrow);
    std::smatch match;
    if (std::regex_match(calls, match, counted)) {
        rule.times = match[1].matched ? std::stoi(match[1]) : 1;
        calls = string(match[2]);
    }
    rule.calls = ParseCallPattern(calls);
    ReadAnswer(SplitWords(text.substr(arrow + 4)), &rule);
    CheckRule(rule);
    return rule;
}

void CheckName(const string& what, const string& name, const Words& right) {
    if (Contains(right, name)) return;
    Refuse("no " + what + " \"" + name + "\"; there are: " + Joined(right));
}

void CheckRule(const Rule& rule) {
    if (!rule.answer || rule.answer->fault == Fault::kNone) return;
    if (rule.calls.backend == Backend::kAidl) return;
    Words others;
    bool ends = false;
    for (const ServiceMethod& method : kMethods) {
        ends |= method.givesOneNumberOverHidl && rule.calls.method == method.name;
        if (!method.givesOneNumberOverHidl) others.emplace_back(method.name);
    }
    if (!ends) return;
    Refuse("over HIDL a failed call of " + rule.calls.method +
           " ends the process; those that do not: " + Joined(others));
}

Words SplitWords(const string& text) {
    static const std::regex pattern("(?:'[^']*'|[^ '])+");
    if (std::count(text.begin(), text.end(), '\'') % 2 != 0) Refuse("a quote is not closed");
    Words words;
    for (std::sregex_iterator at(text.begin(), text.end(), pattern), end; at != end; ++at) {
        words.push_back(std::regex_replace(at->str(), std::regex("'"), ""));
    }
    return words;
}

std::optional<double> ParseSeconds(const string& text) {
    char* end = nullptr;
    const double seconds = strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !(seconds >= 0 && seconds < 1e9)) return {};
    return seconds;
}

void Script::Add(Rule rule) {
    const std::lock_guard lock(mLock);
    mRules.push_back(std::move(rule));
}

void Script::Clear() {
    const std::lock_guard lock(mLock);
    mRules.clear();
}

bool Script::IsEmpty() const {
    const std::lock_guard lock(mLock);
    return mRules.empty();
}

std::optional<Rule> Script::Take(Backend backend, const string& service, const string& method,
                                 const Words& arguments) {
    const std::lock_guard lock(mLock);
    auto best = mRules.end();
    const auto rank = [](const Rule& rule) {
        return std::make_tuple(rule.times > 0, rule.calls.Precision());
    };
    for (auto rule = mRules.begin(); rule != mRules.end(); ++rule) {
        if (!rule->calls.Matches(backend, service, method, arguments)) continue;
        const bool isFirst = best == mRules.end();
        if (isFirst || rank(*rule) > rank(*best) ||
            (rank(*rule) == rank(*best) && rule->times == 0)) {
            best = rule;
        }
    }
    if (best == mRules.end()) return {};
    Rule taken = *best;
    if (best->times > 0 && --best->times == 0) mRules.erase(best);
    return taken;
}

}  // namespace kalvorn::device
