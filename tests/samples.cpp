#include "samples.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <stdexcept>

namespace {

Lines SplitAt(const std::string& separator, const std::string& text) {
    Lines parts;
    for (size_t start = 0, at = 0; at != std::string::npos; start = at + separator.size()) {
        at = text.find(separator, start);
        parts.push_back(text.substr(start, at == std::string::npos ? at : at - start));
    }
    return parts;
}

/** The lines of a log as they are logged. */
Lines LogOf(const std::string& text) {
    Lines lines;
    if (!text.empty()) lines = SplitAt(" | ", text);
    for (std::string& line : lines) {
        line = std::regex_replace(line, std::regex(R"(\\n)"), "\n");
        line = std::regex_replace(line, std::regex(R"(\\x20)"), " ");
    }
    return lines;
}

/** The text, for as long as the program runs. */
const char* Kept(const std::string& text) {
    static std::set<std::string> texts;
    return texts.insert(text).first->c_str();
}

/** A call and the facts below it, as they stand in the file. */
class Entry {
  public:
    Entry(std::string where, std::string call) : mWhere(std::move(where)), mCall(std::move(call)) {}

    /** Takes a line, which may go on the last one that it took. */
    void Add(const std::string& line, const std::string& where);

    Sample Read() const;

  private:
    /** What KvNativeInterface.java declares: types and names of the parameters. */
    struct Declared {
        std::string result;
        Lines types;
        Lines names;
    };

    [[noreturn]] void Refuse(const std::string& why) const {
        throw std::runtime_error(mWhere + ": " + why);
    }
    std::string Method() const { return mCall.substr(0, mCall.find(' ')); }
    /** What is said of one backend, or of both; null when nothing is. */
    const std::string* Fact(const std::string& backend, const std::string& word) const;
    Declared Declaration() const;
    Lines Words(const std::string& text) const;
    int Number(const std::string& word) const;
    java::Arg Argument(const std::string& type, const std::string& word) const;
    java::Object Record(const std::string& type, const Lines& fields) const;
    /** As java::Call() renders it. */
    std::string Result(const std::string& type, const std::string& text) const;
    Sample::Side Side(const std::string& backend, const std::string& resultType,
                      const std::string& healthyResult, std::string* service) const;
    void ReadAsks(const std::string& text, Sample::Side* side, std::string* service) const;

    const std::string mWhere;
    const std::string mCall;
    std::map<std::string, std::string> mFacts;  // "aidl logs" and what follows it
    std::string mLast;
};

void Entry::Add(const std::string& line, const std::string& where) {
    static const std::regex fact(
            " +((?:aidl |hidl )?(?:asks|returns|logs|broken|absent|fills|keeps))(?: +(.*))?");
    static const std::regex more(R"( +(\| .*))");
    std::smatch match;
    if (!mLast.empty() && std::regex_match(line, match, more)) {
        mFacts[mLast] += " " + match[1].str();
    } else if (!std::regex_match(line, match, fact)) {
        throw std::runtime_error(where + ": not a fact about a call:" + line);
    } else if (!mFacts.emplace(mLast = match[1], match[2]).second) {
        throw std::runtime_error(where + ": twice: " + mLast);
    }
}

const std::string* Entry::Fact(const std::string& backend, const std::string& word) const {
    auto found = mFacts.find(std::string(backend).append(" ").append(word));
    if (found == mFacts.end()) found = mFacts.find(word);
    return found == mFacts.end() ? nullptr : &found->second;
}

Entry::Declared Entry::Declaration() const {
    static const std::string source = [] {
        std::ifstream file(KALVORN_SOURCE "/java/com/quorvin/kalvornii/KvNativeInterface.java");
        return std::string(std::istreambuf_iterator<char>(file), {});
    }();
    std::smatch match;
    const std::regex method(R"(native (\S+) )" + Method() + R"(\(([^)]*)\))");
    if (!std::regex_search(source, match, method)) Refuse("Java declares no " + Method());
    Declared declared{match[1], {}, {}};
    const std::string parameters = match[2];
    static const std::regex parameter(R"(([\w\[\]]+) (\w+))");
    for (std::sregex_iterator at(parameters.begin(), parameters.end(), parameter), end; at != end;
         ++at) {
        declared.types.push_back((*at)[1]);
        declared.names.push_back((*at)[2]);
    }
    return declared;
}

/** They are quoted by '' where they have to be. */
Lines Entry::Words(const std::string& text) const {
    try {
        return kalvorn::device::SplitWords(text);
    } catch (const std::runtime_error& error) {
        Refuse(error.what());
    }
}

int Entry::Number(const std::string& word) const {
    char* end = nullptr;
    const long number = strtol(word.c_str(), &end, 0);
    if (word.empty() || *end != '\0') Refuse("not a number: " + word);
    return static_cast<int>(number);
}

java::Arg Entry::Argument(const std::string& type, const std::string& word) const {
    if (type == "int") return Number(word);
    if (type == "String") return Kept(word);
    java::Bytes bytes;
    for (size_t i = 0; i < word.size(); i += 2) {
        bytes.push_back(static_cast<int8_t>(Number("0x" + word.substr(i, 2))));
    }
    return bytes;
}

java::Object Entry::Record(const std::string& type, const Lines& fields) const {
    static const std::set<std::string> numbers{"version",    "commandId", "operation", "cycle",
                                               "dataSource", "errorCode", "itemId"};
    java::Object record{Kept("com/quorvin/kalvornii/" + type), {}};
    for (const std::string& field : fields) {
        const Lines parts = SplitAt("=", field);
        if (parts.size() != 2) Refuse("not a field: " + field);
        record.fields[parts[0]] = Kept(parts[1]);
        if (numbers.count(parts[0]) != 0) record.fields[parts[0]] = Number(parts[1]);
    }
    return record;
}

std::string Entry::Result(const std::string& type, const std::string& text) const {
    const Lines words = Words(text);
    if (words.size() != (type == "int[]" ? 2 : 1)) Refuse("not one result: " + text);
    if (type == "String") return '"' + words[0] + '"';
    for (const std::string& word : words) Number(word);
    return type == "int" ? words[0] : "{" + words[0] + ", " + words[1] + "}";
}

void Entry::ReadAsks(const std::string& text, Sample::Side* side, std::string* service) const {
    static const std::regex ask(R"(([a-z_]+)\.(\w+\(.*\)) -> (.*))");
    for (const std::string& part : SplitAt(" | ", text)) {
        std::smatch match;
        if (!std::regex_match(part, match, ask)) Refuse("not what is asked: " + part);
        *service = match[1];
        side->asks.push_back(match[2]);
        Lines words = Words(match[3]);
        words.resize(3);
        side->answers.emplace_back(Number(words[0]), words[1], words[2]);
    }
}

Sample::Side Entry::Side(const std::string& backend, const std::string& resultType,
                         const std::string& healthyResult, std::string* service) const {
    Sample::Side side;
    if (const std::string* absent = Fact(backend, "absent")) side.absentLog = LogOf(*absent);
    const std::string* logs = Fact(backend, "logs");
    if (logs == nullptr) return side;
    side.log = LogOf(*logs);
    const std::string* asks = Fact(backend, "asks");
    ReadAsks(asks == nullptr ? "" : *asks, &side, service);
    if (std::count(side.log.begin(), side.log.end(), ">") != static_cast<int>(side.asks.size())) {
        Refuse("not a > for each that is asked");
    }
    const std::string* returns = Fact(backend, "returns");
    side.result = Result(resultType, returns == nullptr ? healthyResult : *returns);
    if (const std::string* broken = Fact(backend, "broken")) {
        const size_t end = std::min(broken->find(" | "), broken->size());
        side.brokenResult = Result(resultType, broken->substr(0, end));
        side.brokenLog = LogOf(end == broken->size() ? "" : broken->substr(end + 3));
    }
    if (const std::string* fills = Fact(backend, "fills")) {
        side.field = Words(*fills).at(0);
        side.fieldText = Words(*fills).at(1);
    }
    return side;
}

Sample Entry::Read() const {
    const size_t equals = mCall.rfind(" = ");
    if (equals == std::string::npos) Refuse("a call has a result, after =");
    Lines words = Words(mCall.substr(0, equals));
    words.erase(words.begin());
    const Declared declared = Declaration();
    const std::string& type = declared.result;
    const std::string result = mCall.substr(equals + 3);
    Sample sample{mWhere, "", Method(), {}, declared.names, Result(type, result), "", 0, {}, {}};
    sample.absentResult = type == "String" ? "\"INVALID_SERVICE\""
                          : type == "int"  ? "-9999"
                                           : "{-9999, -9999}";
    if (declared.types.size() == 1 && declared.types[0].find("BigData") == 0) {
        sample.args.emplace_back(Record(declared.types[0], words));
        words.clear();
    } else if (words.size() != declared.types.size()) {
        Refuse("not as many arguments as the method has");
    }
    for (size_t i = 0; i < words.size(); i++) {
        sample.args.push_back(Argument(declared.types[i], words[i]));
    }
    sample.aidl = Side("aidl", type, result, &sample.service);
    sample.hidl = Side("hidl", type, result, &sample.service);
    if (!mFacts.empty() && !sample.aidl.brokenResult)
        Refuse("lacks the logs or the broken call over AIDL");
    if (const std::string* keeps = Fact("aidl", "keeps")) sample.keeps = Number(*keeps);
    return sample;
}

std::vector<Entry> ReadEntries(std::istream& file, const std::string& name) {
    std::vector<Entry> entries;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string where = name + ":" + std::to_string(++number);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] != ' ' || entries.empty()) {
            entries.emplace_back(where, line);
        } else {
            entries.back().Add(line, where);
        }
    }
    return entries;
}

/** What a service's methods log without it is told by its first sample, where by no other. */
void Inherit(const Sample::Side& first, Sample::Side* side, const std::string& where) {
    if (side->log.empty() || side->absentLog) return;
    if (!first.absentLog) throw std::runtime_error(where + ": lacks what is logged when absent");
    side->absentLog = first.absentLog;
}

}  // namespace

std::vector<Sample> ReadSamples(std::istream& file, const std::string& name) {
    std::vector<Sample> samples;
    std::map<std::string, Sample> firsts;
    for (const Entry& entry : ReadEntries(file, name)) {
        Sample sample = entry.Read();
        const Sample& first = firsts.emplace(sample.service, sample).first->second;
        Inherit(first.aidl, &sample.aidl, sample.where);
        Inherit(first.hidl, &sample.hidl, sample.where);
        samples.push_back(std::move(sample));
    }
    return samples;
}

const std::vector<Sample>& Samples() {
    static const std::string name = "samples/methods.samples";
    static std::ifstream file(KALVORN_SOURCE "/" + name);
    static const std::vector<Sample> samples = ReadSamples(file, name);
    return samples;
}
