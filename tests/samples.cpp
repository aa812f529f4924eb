#include "samples.h"

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <sstream>
#include <stdexcept>

namespace {

constexpr const char* kFile = "samples/methods.samples";

/** A call and the facts below it, as they stand in the file. */
struct Entry {
    std::string where;
    std::string call;
    std::map<std::string, std::string> facts;  // "aidl logs" and what follows it
};

[[noreturn]] void Refuse(const std::string& where, const std::string& why) {
    throw std::runtime_error(where + ": " + why);
}

std::string Trimmed(const std::string& text) {
    const size_t start = text.find_first_not_of(' ');
    return start == std::string::npos ? "" : text.substr(start);
}

void AddFact(Entry* entry, std::string* last, const std::string& text, const std::string& where) {
    static const std::regex fact(
            "((?:aidl |hidl )?(?:asks|returns|logs|broken|absent|fills|keeps))(?: +(.*))?");
    std::smatch match;
    if (text[0] == '|' && !last->empty()) {
        entry->facts[*last] += ' ' + text;
    } else if (entry != nullptr && std::regex_match(text, match, fact)) {
        *last = match[1];
        if (!entry->facts.emplace(*last, match[2]).second) Refuse(where, "twice: " + *last);
    } else {
        Refuse(where, "not a fact about a call: " + text);
    }
}

std::vector<Entry> ReadEntries(std::istream& file, const std::string& name) {
    std::vector<Entry> entries;
    std::string last;
    int number = 0;
    for (std::string line; std::getline(file, line);) {
        const std::string where = name + ":" + std::to_string(++number);
        if (line.empty() || line[0] == '#') continue;
        if (line[0] == ' ') {
            AddFact(entries.empty() ? nullptr : &entries.back(), &last, Trimmed(line), where);
        } else {
            entries.push_back({where, line, {}});
            last.clear();
        }
    }
    return entries;
}

Lines SplitAt(const std::string& separator, const std::string& text) {
    Lines parts;
    size_t start = 0;
    for (size_t at = 0; at != std::string::npos; start = at + separator.size()) {
        at = text.find(separator, start);
        parts.push_back(text.substr(start, at == std::string::npos ? at : at - start));
    }
    return parts;
}

/** The words, quoted by '' where they have to be; a = alone is kept as such. */
Lines Words(const std::string& text, const std::string& where) {
    Lines words;
    bool inQuotes = false;
    bool inWord = false;
    for (const char c : text) {
        if (c == ' ' && !inQuotes) {
            inWord = false;
            continue;
        }
        if (c == '"' || c == '\\') Refuse(where, "texts are quoted by '' alone");
        if (!std::exchange(inWord, true)) words.emplace_back();
        if (c == '\'') {
            inQuotes = !inQuotes;
        } else {
            words.back() += c;
        }
    }
    if (inQuotes) Refuse(where, "a quote is not closed");
    return words;
}

int Number(const std::string& word, const std::string& where) {
    char* end = nullptr;
    const long number = strtol(word.c_str(), &end, 0);
    if (word.empty() || *end != '\0') Refuse(where, "not a number: " + word);
    return static_cast<int>(number);
}

/** The text, for as long as the program runs. */
const char* Kept(const std::string& text) {
    static std::set<std::string> texts;
    return texts.insert(text).first->c_str();
}

java::Bytes BytesOf(const std::string& hex, const std::string& where) {
    java::Bytes bytes;
    for (size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<int8_t>(Number("0x" + hex.substr(i, 2), where)));
    }
    return bytes;
}

void SetField(java::Object* object, const std::string& word, const std::string& where) {
    static const std::set<std::string> numbers{"version",    "commandId", "operation", "cycle",
                                               "dataSource", "errorCode", "itemId"};
    const size_t equals = word.find('=');
    if (equals == std::string::npos) Refuse(where, "not a field: " + word);
    const std::string name = word.substr(0, equals);
    const std::string value = word.substr(equals + 1);
    if (numbers.count(name) != 0) {
        object->fields[name] = Number(value, where);
    } else {
        object->fields[name] = Kept(value);
    }
}

/** The arguments of these JNI types, "I", "[B" or "Lclass;", by these words. */
Args ArgsOf(const Lines& types, const Lines& words, const std::string& where) {
    Args args;
    if (types.size() == 1 && types[0].find("BigData") != std::string::npos) {
        java::Object object{Kept(types[0].substr(1, types[0].size() - 2)), {}};
        for (const std::string& word : words) SetField(&object, word, where);
        return {object};
    }
    if (types.size() != words.size()) Refuse(where, "not as many arguments as the method has");
    for (size_t i = 0; i < types.size(); i++) {
        if (types[i] == "I") {
            args.emplace_back(Number(words[i], where));
        } else if (types[i] == "[B") {
            args.emplace_back(BytesOf(words[i], where));
        } else {
            args.emplace_back(Kept(words[i]));
        }
    }
    return args;
}

/** A result of this JNI type as java::Call() renders it. */
std::string Rendered(const std::string& type, const Lines& words, const std::string& where) {
    if (words.size() != (type == "[I" ? 2 : 1)) Refuse(where, "not one result");
    if (type[0] == 'L') return '"' + words[0] + '"';
    for (const std::string& word : words) Number(word, where);
    return type == "I" ? words[0] : "{" + words[0] + ", " + words[1] + "}";
}

/** What KvNativeInterface.java says of one method. */
struct Declared {
    Lines types;
    Lines names;
    std::string result;
};

std::string SourceOfJava() {
    std::ifstream file(KALVORN_SOURCE "/java/com/quorvin/kalvornii/KvNativeInterface.java");
    return {std::istreambuf_iterator<char>(file), {}};
}

Declared DeclarationOf(const std::string& method, const std::string& where) {
    static const std::string source = SourceOfJava();
    std::smatch match;
    if (!std::regex_search(source, match, std::regex("native \\S+ " + method + "\\(([^)]*)\\)"))) {
        Refuse(where, "KvNativeInterface.java does not declare " + method);
    }
    Declared declared;
    const std::string parameters = match[1];
    static const std::regex name("\\w+(?=,|$)");
    std::copy(std::sregex_token_iterator(parameters.begin(), parameters.end(), name),
              std::sregex_token_iterator(), std::back_inserter(declared.names));
    const std::string signature = java::SignatureOf(method);
    const size_t end = signature.find(')');
    declared.result = signature.substr(end + 1);
    const std::string list = signature.substr(1, end - 1);
    static const std::regex type("I|\\[B|L[^;]+;");
    std::copy(std::sregex_token_iterator(list.begin(), list.end(), type),
              std::sregex_token_iterator(), std::back_inserter(declared.types));
    return declared;
}

Lines LogOf(const std::string& text) {
    Lines lines;
    if (text.empty()) return lines;
    for (std::string line : SplitAt(" | ", text)) {
        for (const auto& [written, meant] : {std::pair("\\n", "\n"), std::pair("\\x20", " ")}) {
            const size_t at = line.find(written);
            if (at != std::string::npos) line.replace(at, strlen(written), meant);
        }
        lines.push_back(line);
    }
    return lines;
}

/** Makes one side of a sample of what an entry says of its backend. */
class SideReader {
  public:
    SideReader(const Entry& entry, std::string backend, std::string resultType,
               std::string healthyResult)
        : mEntry(entry),
          mBackend(std::move(backend)),
          mResultType(std::move(resultType)),
          mHealthyResult(std::move(healthyResult)) {}

    Sample::Side Read(std::string* service) const;

  private:
    const std::string* Fact(const std::string& word) const;
    void ReadAsks(Sample::Side* side, std::string* service) const;
    std::string Result(const std::string& text) const {
        return Rendered(mResultType, Words(text, mEntry.where), mEntry.where);
    }

    const Entry& mEntry;
    const std::string mBackend;
    const std::string mResultType;
    const std::string mHealthyResult;
};

/** What stands for this backend alone goes before what stands for both. */
const std::string* SideReader::Fact(const std::string& word) const {
    for (const std::string& name : {mBackend + " " + word, word}) {
        const auto found = mEntry.facts.find(name);
        if (found != mEntry.facts.end()) return &found->second;
    }
    return nullptr;
}

void SideReader::ReadAsks(Sample::Side* side, std::string* service) const {
    const std::string* asks = Fact("asks");
    static const std::regex ask(R"(([a-z_]+)\.(\w+\(.*\)) -> (.*))");
    for (const std::string& text : SplitAt(" | ", asks == nullptr ? "" : *asks)) {
        std::smatch match;
        if (!std::regex_match(text, match, ask)) Refuse(mEntry.where, "not what is asked: " + text);
        *service = match[1];
        side->asks.push_back(match[2]);
        Lines words = Words(match[3], mEntry.where);
        words.resize(3);
        side->answers.emplace_back(Number(words[0], mEntry.where), words[1], words[2]);
    }
}

Sample::Side SideReader::Read(std::string* service) const {
    Sample::Side side;
    const std::string* absent = Fact("absent");
    if (absent != nullptr) side.absentLog = LogOf(*absent);
    const std::string* logs = Fact("logs");
    if (logs == nullptr) return side;
    side.log = LogOf(*logs);
    ReadAsks(&side, service);
    if (std::count(side.log.begin(), side.log.end(), ">") != static_cast<int>(side.asks.size())) {
        Refuse(mEntry.where, "not a > for each that is asked");
    }
    const std::string* returns = Fact("returns");
    side.result = Result(returns != nullptr ? *returns : mHealthyResult);
    const std::string* broken = Fact("broken");
    if (broken != nullptr) {
        const size_t end = std::min(broken->find(" | "), broken->size());
        side.brokenResult = Result(broken->substr(0, end));
        side.brokenLog = LogOf(end < broken->size() ? broken->substr(end + 3) : "");
    }
    const std::string* fills = Fact("fills");
    if (fills != nullptr) {
        const Lines words = Words(*fills, mEntry.where);
        side.field = words.at(0);
        side.fieldText = words.at(1);
    }
    return side;
}

std::string AbsentResult(const std::string& type) {
    if (type[0] == 'L') return "\"INVALID_SERVICE\"";
    return type == "I" ? "-9999" : "{-9999, -9999}";
}

Sample SampleOf(const Entry& entry) {
    const size_t equals = entry.call.rfind(" = ");
    if (equals == std::string::npos) Refuse(entry.where, "a call has a result, after =");
    Lines words = Words(entry.call.substr(0, equals), entry.where);
    Sample sample;
    sample.where = entry.where;
    sample.method = words[0];
    words.erase(words.begin());
    const Declared declared = DeclarationOf(sample.method, entry.where);
    sample.args = ArgsOf(declared.types, words, entry.where);
    sample.names = declared.names;
    sample.absentResult = AbsentResult(declared.result);
    const std::string healthyResult = entry.call.substr(equals + 3);
    sample.aidl = SideReader(entry, "aidl", declared.result, healthyResult).Read(&sample.service);
    sample.hidl = SideReader(entry, "hidl", declared.result, healthyResult).Read(&sample.service);
    if (sample.aidl.log.empty() || !sample.aidl.brokenResult) {
        Refuse(entry.where, "lacks the logs or the broken call over AIDL");
    }
    const auto keeps = entry.facts.find("keeps");
    if (keeps != entry.facts.end()) sample.keeps = Number(keeps->second, entry.where);
    return sample;
}

std::vector<Entry> ReadFile() {
    std::ifstream file(std::string(KALVORN_SOURCE "/") + kFile);
    return ReadEntries(file, kFile);
}

/** Takes what a service's methods log without it from its first sample, where there is no other. */
void Inherit(const Sample::Side& first, Sample::Side* side, const std::string& where) {
    if (side->log.empty()) return;
    if (!side->absentLog) side->absentLog = first.absentLog;
    if (!side->absentLog) Refuse(where, "the first sample of a service lacks the absent lines");
}

std::vector<Sample> SamplesOf(const std::vector<Entry>& entries) {
    std::vector<Sample> samples;
    std::map<std::string, Sample> firsts;
    for (const Entry& entry : entries) {
        if (entry.facts.empty()) continue;
        Sample sample = SampleOf(entry);
        const Sample& first = firsts.emplace(sample.service, sample).first->second;
        Inherit(first.aidl, &sample.aidl, sample.where);
        Inherit(first.hidl, &sample.hidl, sample.where);
        samples.push_back(std::move(sample));
    }
    return samples;
}

}  // namespace

std::vector<Sample> ReadSamples(std::istream& file, const std::string& name) {
    return SamplesOf(ReadEntries(file, name));
}

const std::vector<Sample>& Samples() {
    static const std::vector<Sample> samples = SamplesOf(ReadFile());
    return samples;
}

Lines SampledMethods() {
    Lines methods;
    for (const Entry& entry : ReadFile()) {
        methods.push_back(entry.call.substr(0, entry.call.find(' ')));
    }
    std::sort(methods.begin(), methods.end());
    return methods;
}
