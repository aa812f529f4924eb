#pragma once

#include <chrono>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "simulator/answer.h"

/** What services answer when it is not the usual. */
namespace kalvorn::device {

/** Which calls are meant: those of a method, or fewer. */
struct CallPattern {
    std::string method;
    std::optional<Backend> backend;
    std::string service;                   // any when empty
    std::optional<std::string> arguments;  // as they are recorded

    bool Matches(Backend itsBackend, const std::string& itsService, const std::string& itsMethod,
                 const std::vector<std::string>& itsArguments) const;
    /** How many of the calls of a method it leaves out. */
    int Precision() const;
};

/** How such calls are answered. */
struct Rule {
    CallPattern calls;
    std::optional<Answer> answer;  // else the usual one
    int times = 0;                 // always when 0
    std::chrono::milliseconds delay{0};
    bool hangs = false;  // until it is released
};

/**
 * A pattern as "aidl factory.readNv(7)", of which only the method has to be there, the rest as a
 * call is recorded. Throws std::runtime_error, which says what is wrong.
 */
CallPattern ParseCallPattern(const std::string& text);

/**
 * A rule as "[once|N times] PATTERN -> ANSWER". The answer is a code and up to two texts, words as
 * of SplitWords(), or "fails", or "hangs"; "after SECONDS" before it is a delay, of the usual
 * answer when nothing follows.
 */
Rule ParseRule(const std::string& text);

/** Throws when the rule would end the caller's process, as its failure does over HIDL. */
void CheckRule(const Rule& rule);

/** Parts at blanks that do not stand between two '. Throws for one ' too many. */
std::vector<std::string> SplitWords(const std::string& text);

/** A number of at least 0, else nothing. */
std::optional<double> ParseSeconds(const std::string& text);

/** Throws std::runtime_error. */
[[noreturn]] void Refuse(const std::string& why);

bool Contains(const std::vector<std::string>& names, const std::string& name);

/** The words with ", " between them. */
std::string Joined(const std::vector<std::string>& words);

/** Throws, and names the right ones, when this name is none of them. */
void CheckName(const std::string& what, const std::string& name,
               const std::vector<std::string>& right);

/** The rules in force. On any thread. */
class Script {
  public:
    void Add(Rule rule);
    void Clear();
    bool IsEmpty() const;
    /**
     * The rule for a call: one that serves a number of calls before one for always, then the more
     * precise, then the older of those that are counted and the newer of the others.
     */
    std::optional<Rule> Take(Backend backend, const std::string& service, const std::string& method,
                             const std::vector<std::string>& arguments);

  private:
    mutable std::mutex mLock;
    std::vector<Rule> mRules;
};

}  // namespace kalvorn::device
