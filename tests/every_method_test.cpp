// What holds for every method alike: its sample, a service that is absent, a null argument, a call
// that fails on its way, and what is taken from the virtual machine and given back.

#include <algorithm>
#include <regex>
#include <set>
#include <sstream>

#include "samples.h"

namespace {

constexpr const char* kOld = "\"old text\"";

bool TellsTheBackend(const std::string& line) {
    return std::regex_search(line, std::regex("By[AH]idl$"));
}

/** The line that tells the choice, when the method has one, and those of the absence. */
Lines AbsentLog(const Sample& sample, Backend backend) {
    const Sample::Side& side = sample.On(backend);
    Lines log = side.absentLog.value();
    if (!side.log.empty() && TellsTheBackend(side.log[0])) log.insert(log.begin(), side.log[0]);
    return log;
}

/** The same of a device that has the service over no backend that the method knows. */
Lines LogWithoutService(const Sample& sample) {
    // A method of AIDL alone may look for its service before it tells a choice.
    if (sample.hidl.log.empty()) return sample.hidl.absentLog.value_or(AbsentLog(sample, kAidl));
    return AbsentLog(sample, kHidl);
}

/** Null for every argument that can be, where the service is looked at before the arguments. */
Args ArgsOfAnAbsentCall(const Sample& sample, const Lines& absentLog) {
    Args args = sample.args;
    for (java::Arg& arg : args) {
        if (absentLog.size() <= 2 && !std::holds_alternative<int>(arg)) arg = nullptr;
    }
    return args;
}

bool NeedsLaterRevision(const Sample& sample) {
    const Lines& log = sample.hidl.absentLog.value_or(Lines{""});
    return !log.empty() && log.back().find("not support") != std::string::npos;
}

/** The arguments that may not be null: not a number, nor the fingerprint's data. */
bool IsNullRefused(const Sample& sample, size_t i) {
    return !std::holds_alternative<int>(sample.args[i]) && sample.service != "fingerprint";
}

std::string MethodOf(const std::string& asked) {
    return asked.substr(0, asked.find('('));
}

class EveryMethodTest : public LibraryTest {
  protected:
    /**
     * The sample's service is there, over HIDL in the first revision that has the method; the
     * static fields have an old text.
     */
    void Connect(Backend backend, const Sample& sample) {
        std::string service = sample.service;
        const bool hasRevisions = service == "factory" || service == "display";
        if (backend == kHidl && hasRevisions && !NeedsLaterRevision(sample)) service += "@1.0";
        LoadWith(backend, service);
        SetOldTexts();
    }

    /** Does this for each sample over each of its backends, connected. */
    template <typename Action>
    void OverEach(const Action& action) {
        for (const Sample& sample : Samples()) {
            for (const Backend backend : sample.Backends()) {
                SCOPED_TRACE(sample.where + ": " + (backend == kAidl ? "aidl " : "hidl ") +
                             sample.method);
                Connect(backend, sample);
                action(sample, backend);
            }
        }
    }

    /** Each call that the sample makes fails so. */
    void Break(const Sample::Side& side, Fault fault) {
        for (const std::string& asked : side.asks) device.Script(MethodOf(asked), fault);
    }

    static void SetOldTexts() {
        for (const char* field : {"currentValue", "i2cInfo"}) {
            java::SetStaticField(field, "old text");
        }
    }

    /** Calls; the log has a > for each call to a service. */
    std::string Play(const Sample& sample, Lines* log) {
        std::vector<int> linesBefore;
        device.OnCall([&] { linesBefore.push_back(LinesLogged()); });
        std::string result = java::Call(sample.method, sample.args);
        device.OnCall(nullptr);
        *log = TakeLog();
        for (auto at = linesBefore.rbegin(); at != linesBefore.rend(); ++at) {
            log->insert(log->begin() + *at, ">");
        }
        return result;
    }

    /** The static fields: this one has this text, any other its old one. */
    void ExpectFilled(const std::string& filled, const std::string& text) {
        for (const char* field : {"currentValue", "i2cInfo"}) {
            EXPECT_EQ(filled == field ? '"' + text + '"' : kOld, java::StaticField(field)) << field;
        }
    }

    void ExpectNothingAsked() { EXPECT_EQ(Lines{}, device.TakeCalls()); }
};

TEST_F(EveryMethodTest, DoesWhatItsSampleSays) {
    OverEach([&](const Sample& sample, Backend backend) {
        const Sample::Side& side = sample.On(backend);
        Lines calls;
        for (size_t i = 0; i < side.asks.size(); i++) {
            device.Script(MethodOf(side.asks[i]), side.answers[i]);
            calls.push_back((backend == kAidl ? "aidl " : "hidl ") + sample.service + "." +
                            side.asks[i]);
        }
        Lines log;
        EXPECT_EQ(side.result, Play(sample, &log));
        EXPECT_EQ(side.log, log);
        EXPECT_EQ(calls, device.TakeCalls());
        ExpectFilled(side.field, side.fieldText);
    });
}

/** But for so many texts. */
void ExpectGivenBack(const Sample& sample, const java::JniUse& use, int keptTexts) {
    EXPECT_EQ(keptTexts, use.textsTaken - use.textsReleased);
    EXPECT_EQ(use.bytesTaken, use.bytesReleased);
    // The fingerprint's data is not written back, the signature is.
    EXPECT_EQ(sample.service == "fingerprint" ? use.bytesReleased : 0, use.bytesAborted);
    EXPECT_EQ(use.intsTaken, use.intsReleased);
    EXPECT_EQ(0, use.intsCommitted);
}

// What the virtual machine gives is given back, but for the texts that are kept on purpose.
TEST_F(EveryMethodTest, GivesBackWhatItTakes) {
    OverEach([&](const Sample& sample, Backend) {
        const java::CountJniUse count;
        java::Call(sample.method, sample.args);
        ExpectGivenBack(sample, count.use(), sample.keeps);
    });
}

// The presets stand, in the result, the log and the static fields alike.
TEST_F(EveryMethodTest, WithACallThatFails) {
    OverEach([&](const Sample& sample, Backend backend) {
        const Sample::Side& side = sample.On(backend);
        if (!side.brokenResult) return;  // ends the process
        Lines log(side.log.begin(), std::find(side.log.begin(), side.log.end(), ">"));
        log.insert(log.end(), side.brokenLog.begin(), side.brokenLog.end());
        for (const Fault fault : {Fault::kTransport, Fault::kDeadObject}) {
            Connect(backend, sample);
            Break(side, fault);
            const java::CountJniUse count;
            EXPECT_EQ(*side.brokenResult, java::Call(sample.method, sample.args));
            ExpectGivenBack(sample, count.use(), sample.keeps);
            EXPECT_FALSE(device.TakeCalls().empty());
            EXPECT_EQ(log, TakeLog());
            ExpectFilled(side.field, "");
        }
    });
}

TEST_F(EveryMethodTest, HidlValueOfAFailedCallEndsTheProcess) {
    OverEach([&](const Sample& sample, Backend backend) {
        if (sample.On(backend).brokenResult) return;
        Break(sample.On(backend), Fault::kTransport);
        EXPECT_DEATH(java::Call(sample.method, sample.args), "value of a failed call");
    });
}

// A HIDL service of a revision before the method is as good as none, and so is one over HIDL for a
// method that only AIDL has.
TEST_F(EveryMethodTest, WithoutItsService) {
    for (const Sample& sample : Samples()) {
        if (sample.service.empty()) continue;
        SCOPED_TRACE(sample.where + ": " + sample.method);
        std::string service;
        if (NeedsLaterRevision(sample)) service = sample.service + "@1.0";
        if (sample.hidl.log.empty() && device.Has(kHidl, sample.service)) service = sample.service;
        LoadWith(kHidl, service);
        const Lines log = LogWithoutService(sample);
        for (const Args& args : {sample.args, ArgsOfAnAbsentCall(sample, log)}) {
            const java::CountJniUse count;
            EXPECT_EQ(sample.absentResult, java::Call(sample.method, args));
            // The item names' texts and elements are kept then.
            if (sample.method != "nativeSetTestItemName") ExpectGivenBack(sample, count.use(), 0);
            ExpectNothingAsked();
            EXPECT_EQ(log, TakeLog());
        }
    }
}

TEST_F(EveryMethodTest, WithANullArgument) {
    OverEach([&](const Sample& sample, Backend) {
        Args allNull = sample.args;
        std::string first;
        for (size_t i = 0; i < sample.args.size(); i++) {
            if (!IsNullRefused(sample, i)) continue;
            if (first.empty()) first = sample.names[i];
            Args args = sample.args;
            args[i] = allNull[i] = nullptr;
            const java::CountJniUse count;
            EXPECT_EQ(sample.absentResult, java::Call(sample.method, args));
            ExpectGivenBack(sample, count.use(), 0);
            ExpectNothingAsked();
            EXPECT_EQ("E " + sample.names[i] + " is null", TakeLastLine());
        }
        if (first.empty()) return;
        java::Call(sample.method, allNull);
        EXPECT_EQ("E " + first + " is null", TakeLastLine());
    });
}

TEST_F(EveryMethodTest, WithoutMemoryForAnArgument) {
    OverEach([&](const Sample& sample, Backend) {
        const auto isNumber = [](const java::Arg& arg) { return std::holds_alternative<int>(arg); };
        if (std::all_of(sample.args.begin(), sample.args.end(), isNumber)) return;
        const java::RefuseNext refusal(java::Jni::kCopy);
        EXPECT_EQ(sample.absentResult, java::Call(sample.method, sample.args));
        ExpectNothingAsked();
        const std::string last = TakeLastLine();
        if (sample.service == "fingerprint") {
            EXPECT_EQ("E SendCmdToFingerprintHal fail, rawDataArray is null", last);
        } else if (!std::holds_alternative<java::Bytes>(sample.args.back())) {
            EXPECT_EQ(" is null", last.substr(last.size() - 8));
        }
    });
}

// A text that is lost is null, and a static field keeps its own: after one line in either case, and
// with all else as usual. What fills a field asks for no other text before.
TEST_F(EveryMethodTest, WithoutMemoryForAText) {
    int texts = 0;
    OverEach([&](const Sample& sample, Backend backend) {
        const Sample::Side& side = sample.On(backend);
        const bool fillsField = !side.field.empty();
        if (sample.absentResult[0] != '"' && !fillsField) return;
        const auto play = [&](Lines* log) {
            for (const std::string& asked : side.asks) {
                if (!fillsField) device.Script(MethodOf(asked), {0, "text"});
            }
            return Play(sample, log);
        };
        Lines usualLog;
        const std::string usual = play(&usualLog);
        const Lines usualCalls = device.TakeCalls();
        SetOldTexts();

        const java::RefuseNext refusal(java::Jni::kText);
        Lines log;
        EXPECT_EQ(fillsField ? usual : "null", play(&log));
        EXPECT_EQ(usualCalls, device.TakeCalls());
        EXPECT_EQ(usualLog.size() + 1, log.size());
        const char* lost = fillsField ? "E cannot set " : "E no memory for the Java text of ";
        EXPECT_EQ(1, std::count_if(log.begin(), log.end(), [&](const std::string& line) {
                      return line.rfind(lost, 0) == 0;
                  }));
        ExpectFilled("", "");
        texts++;
    });
    EXPECT_LT(0, texts);
}

std::string Replaced(std::string text, int from, int to) {
    const std::string shown = java::Show(from);
    for (size_t at = text.find(shown); at != std::string::npos; at = text.find(shown)) {
        text.replace(at, shown.size(), java::Show(to));
    }
    return text;
}

// Whatever becomes of a small integer becomes of any other: no call, line or result cuts it.
TEST_F(EveryMethodTest, IntegersStayWhole) {
    const int small[] = {111, 112, 113, 114, 115, 116};
    const int large[] = {-1900000001, -1900000002, 1900000003,
                         -1900000004, 1900000005,  -1900000006};
    OverEach([&](const Sample& sample, Backend backend) {
        // They send bytes, and a text of a few digits of each number.
        if (sample.method == "nativeSetFlashLight" || sample.method == "nativeSetTestCycle") return;
        const auto outcome = [&](const int(&numbers)[6]) {
            Connect(backend, sample);
            Args args = sample.args;
            const int* next = numbers;
            for (java::Arg& arg : args) {
                if (std::holds_alternative<int>(arg)) arg = *next++;
                auto* object = std::get_if<java::Object>(&arg);
                if (object == nullptr) continue;
                for (auto& [name, value] : object->fields) {
                    if (std::holds_alternative<int>(value)) value = *next++;
                }
            }
            for (const std::string& asked : sample.On(backend).asks) {
                device.Script(MethodOf(asked), {numbers[5], "text"});
            }
            std::string all = java::Call(sample.method, args);
            for (const std::string& call : device.TakeCalls()) all += "\n" + call;
            for (const std::string& line : TakeLog()) all += "\n" + line;
            return all;
        };
        std::string expected = outcome(small);
        for (size_t i = 0; i < 6; i++) expected = Replaced(expected, small[i], large[i]);
        EXPECT_EQ(expected, outcome(large));
    });
}

// An operation looks at its service once and keeps it: when everything is released after that, at
// a line that it logs or while it calls, it goes on as ever. Released before, between the query and
// the operation, the service is absent.
TEST_F(EveryMethodTest, KeepsItsServiceOverATeardown) {
    OverEach([&](const Sample& sample, Backend backend) {
        const std::string result = java::Call(sample.method, sample.args);
        const Lines calls = device.TakeCalls();
        const Lines log = TakeLog();
        const Lines absentLog = AbsentLog(sample, backend);
        for (size_t line = 0; line <= log.size(); line++) {
            SCOPED_TRACE(line < log.size() ? log[line] : "while it calls");
            Connect(backend, sample);
            if (line < log.size()) {
                OnLine([line](const std::string&) {
                    if (LinesLogged() == static_cast<int>(line) + 1) Unload();
                });
            } else {
                device.OnCall([] { Unnoticed(Unload); });
            }
            const bool isAbsent = line + 1 < absentLog.size();
            const Args args = isAbsent ? ArgsOfAnAbsentCall(sample, absentLog) : sample.args;
            EXPECT_EQ(isAbsent ? sample.absentResult : result, java::Call(sample.method, args));
            OnLine(nullptr);
            EXPECT_EQ(isAbsent ? Lines{} : calls, device.TakeCalls());
            EXPECT_EQ(isAbsent ? absentLog : log, TakeLog());
        }
    });
}

// The dispatch asks the right service: with one service alone on AIDL, exactly its methods go
// there.
TEST_F(EveryMethodTest, GoesToAidlWhenItsOwnServiceIsThere) {
    for (const std::string& service : Device::Services()) {
        LoadWith(kAidl, service);
        for (const Sample& sample : Samples()) {
            if (sample.hidl.log.empty()) continue;
            java::Call(sample.method, sample.args);
            EXPECT_EQ(sample.On(sample.service == service ? kAidl : kHidl).log[0], TakeLog()[0])
                    << sample.where << ", with " << service;
        }
    }
}

/** The sample's record, of a big-data method. */
java::Object RecordOf(const std::string& method) {
    for (const Sample& sample : Samples()) {
        if (sample.method == method) return std::get<java::Object>(sample.args.at(0));
    }
    throw std::runtime_error("no sample of " + method);
}

// The first null field, in the order in which they are read, is logged alone.
TEST_F(EveryMethodTest, BigDataWithNullFields) {
    const std::map<const char*, Lines> read{
            {"nativeSendBigDataOperation", {"station", "bsn"}},
            {"nativeSendBigDataValue",
             {"deviceName", "station", "testName", "bsn", "value", "minThreshold", "maxThreshold",
              "result", "time", "firmware", "description"}},
    };
    for (const auto& [method, names] : read) {
        for (const Backend backend : {kAidl, kHidl}) {
            LoadWith(backend, "factory");
            java::Object broken = RecordOf(method);
            for (auto name = names.rbegin(); name != names.rend(); ++name) {
                SCOPED_TRACE(*name);
                java::Object oneBroken = RecordOf(method);
                for (java::Object* object : {&broken, &oneBroken}) {
                    object->fields[*name] = static_cast<const char*>(nullptr);
                    const java::CountJniUse count;
                    EXPECT_EQ("-9999", java::Call(method, {*object}));
                    EXPECT_EQ(0, count.use().textsReleased) << "kept as ever";
                    ExpectNothingAsked();
                    EXPECT_EQ(2, LinesLogged());
                    EXPECT_EQ("E " + *name + " is null", TakeLastLine());
                }
            }
        }
    }
}

TEST_F(EveryMethodTest, ItemNamesWithoutMemoryForTheirResults) {
    for (const Backend backend : {kAidl, kHidl}) {
        for (const java::Jni refused : {java::Jni::kIntArray, java::Jni::kIntElements}) {
            LoadWith(backend, "factory");
            const java::RefuseNext refusal(refused);
            EXPECT_EQ("null", java::Call("nativeSetTestItemName", {"m", "s"}));
            ExpectNothingAsked();
            EXPECT_EQ(3, LinesLogged());
            EXPECT_EQ("E no memory for the Java array of two results", TakeLastLine());
            EXPECT_EQ(2, refusal.use().textsTaken);
            EXPECT_EQ(2, refusal.use().textsReleased);
            EXPECT_EQ(refusal.use().intsTaken, refusal.use().intsReleased);
        }
        LoadWith(backend, "factory");
        const java::RefuseNext refusal(java::Jni::kIntArray);
        EXPECT_EQ("null", java::Call("nativeSetTestItemName", {"m", nullptr}));
        EXPECT_EQ(3, LinesLogged());
        EXPECT_EQ("E no memory for the Java array of two results", TakeLastLine());
        EXPECT_EQ(1, refusal.use().textsReleased);
    }
}

TEST_F(EveryMethodTest, WithoutAClassOrFieldThatItNeeds) {
    const struct {
        const char* method;
        Args args;
        const char* result;
        size_t calls;
        int fields;
        const char* line;
    } cases[] = {
            {"nativeI2cTest",
             {},
             "\"pass\"",
             1,
             1,
             "E cannot set i2cInfo to \"bus0:0x38 bus2:0x6b\""},
            {"nativeSendBigDataOperation",
             {RecordOf("nativeSendBigDataOperation")},
             "-9999",
             0,
             6,
             "E cannot find the fields of com/quorvin/kalvornii/BigDataOperation"},
            {"nativeSendBigDataValue",
             {RecordOf("nativeSendBigDataValue")},
             "-9999",
             0,
             16,
             "E cannot find the fields of com/quorvin/kalvornii/BigDataValue"},
    };
    java::SetStaticField("i2cInfo", "old text");
    for (const auto& c : cases) {
        for (const Backend backend : {kAidl, kHidl}) {
            LoadWith(backend, "factory");
            const auto callRefused = [&](java::Jni refused, int granted) {
                SCOPED_TRACE(std::string(c.method) + ", field " + std::to_string(granted));
                const java::RefuseNext refusal(refused, granted);
                EXPECT_EQ(c.result, java::Call(c.method, c.args));
                EXPECT_EQ(c.calls, device.TakeCalls().size());
                const Lines log = TakeLog();
                EXPECT_EQ(1, std::count(log.begin(), log.end(), c.line));
                EXPECT_EQ(kOld, java::StaticField("i2cInfo"));
            };
            callRefused(java::Jni::kClass, 0);
            for (int granted = 0; granted < c.fields; granted++) {
                callRefused(java::Jni::kField, granted);
            }
        }
    }
}

// What is wrong in a file of samples is named, with its place.
TEST(SamplesTest, NamesWhatIsWrong) {
    const std::string sound =
            "nativeSetLightSleep 1 = 0\n    asks  factory.setLightSleep(1) -> 6\n";
    const std::pair<std::string, const char*> cases[] = {
            {"\n    logs  >\n", "f:2: a call has a result, after ="},
            {sound + "    loggs  >\n", "f:3: not a fact about a call:    loggs  >"},
            {sound + "    asks  x.y() -> 1\n", "f:3: twice: asks"},
            {sound, "f:1: lacks the logs or the broken call over AIDL"},
            {sound + "    logs  I a\n    broken  0\n", "f:1: not a > for each that is asked"},
            {"nativeSetLightSleep 1\n    asks  a\n", "f:1: a call has a result, after ="},
            {"nativeSetLightSleep = 0\n    asks  a\n",
             "f:1: not as many arguments as the method has"},
            {"nativeSetLightSleep x = 0\n    asks  a\n", "f:1: not a number: x"},
            {"nativeNone 'x = 0\n    asks  a\n", "f:1: a quote is not closed"},
            {"nativeNone = 0\n    asks  a\n", "f:1: Java declares no nativeNone"},
    };
    for (const auto& [text, message] : cases) {
        std::istringstream file(text);
        try {
            ReadSamples(file, "f");
            ADD_FAILURE() << "taken: " << text;
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(message, e.what());
        }
    }
}

}  // namespace
