#include "painting.h"

namespace ovwpaint::test {

namespace {

class OvwPaintSettings : public OvwPaint {
protected:
    std::string run(const std::vector<std::string>& action, const std::string& file,
                    const std::vector<std::string>& rest = {}) {
        std::vector<std::string> arguments = {"settings"};
        arguments.insert(arguments.end(), action.begin(), action.end());
        arguments.push_back(file);
        arguments.insert(arguments.end(), rest.begin(), rest.end());
        const Outcome result = runWith(arguments);
        m_code = result.code;
        EXPECT_EQ(result.code == cnExitDone, result.errors.empty()) << result.errors;
        return result.output;
    }

    int m_code = 0;
};

TEST_F(OvwPaintSettings, ComeBackAsTheyWereSet) {
    const std::string key = m_folder.path("key");
    std::filesystem::create_directory(key);
    const std::vector<std::pair<const char*, const char*>> common = {
        {"text", "h\xC3\xA9llo world"}, {"int16", "-5"},    {"uint16", "65535"},    {"int32", "-2147483648"},
        {"uint32", "4294967295"},       {"float", "0.25"},  {"double", "1234.5"},   {"path", "/tmp/a b.png"},
        {"rect", "1,-2,3,4"},           {"data", "00ff7f"}, {"length", "1.5,2,300"}};
    auto ofKey = common;
    ofKey.insert(ofKey.end(), {{"uint8", "255"},
                               {"int64", "-9223372036854775808"},
                               {"uint64", "18446744073709551615"},
                               {"point", "3,-4"},
                               {"size", "5,6"},
                               {"pointf", "0.5,-4"},
                               {"sizef", "5,6.25"},
                               {"rectf", "1,2,3.5,-4"},
                               {"pointd", "0.1,-4"},
                               {"sized", "1e+300,6"},
                               {"rectd", "1,2,3,-0.1"}});
    auto ofFile = common;
    ofFile.insert(ofFile.end(), {{"colour", "65535,1,2,3"}, {"number", "12AB"}});
    for (const auto& [file, values] : {std::pair{m_folder.path("p.pff"), ofFile}, std::pair{key, ofKey}}) {
        for (const auto& [type, value] : values)
            run({"set", "--type", type}, file, {"--", type, value});
        for (const auto& [type, value] : values)
            EXPECT_EQ(run({"get", "--type", type}, file, {type}), std::string(value) + "\n") << type;
    }
    EXPECT_TRUE(std::filesystem::exists(key + "/pref.pff"));
}

TEST_F(OvwPaintSettings, AreListedWithTheirBytes) {
    const std::string file = m_folder.path("p.pff");
    run({"set"}, file, {"Name", "one"});
    run({"set", "--type", "int32"}, file, {"Size", "258"});
    run({"set"}, file, {"Name", "two"});
    EXPECT_EQ(run({"list"}, file), "Name\t3\t\"two\"\nSize\t4\t00000102\n");
}

TEST_F(OvwPaintSettings, AreRefusedInOneLine) {
    const std::string file = m_folder.path("p.pff");
    run({"set"}, file, {"Name", "one"});
    const std::string before = fileText(file);
    const std::pair<std::vector<std::string>, int> cases[] = {
        {{"get", file, "Size"}, cnExitFailure},
        {{"get", file, "Size", "--type", "data"}, cnExitFailure},
        {{"get", file, "Name", "--type", "int32"}, cnExitFailure},
        {{"get", file, "Name", "--type", "uint8"}, cnExitFailure},
        {{"get", m_folder.path("none"), "Name"}, cnExitFailure},
        {{"list", m_folder.path("none")}, cnExitFailure},
        {{"set", file, "Size", "12x", "--type", "int32"}, cnExitFailure},
        {{"set", file, "Size", "1,2,3", "--type", "rect"}, cnExitFailure},
        {{"set", file, "Size", "1,2,3,4,5", "--type", "rect"}, cnExitFailure},
        {{"set", file, "Size", "1,2.5,300", "--type", "length"}, cnExitFailure},
        {{"set", file, "Size", "12abcd", "--type", "number"}, cnExitFailure},
        {{"set", file, "Size", "abc", "--type", "data"}, cnExitFailure},
        {{"set", file, "", "12"}, cnExitFailure},
        {{"set", file, "Size", "1", "--type", "word"}, cnExitUsage},
        {{"set", file, "Size"}, cnExitUsage},
        {{"erase", file}, cnExitUsage},
        {{}, cnExitUsage},
    };
    for (auto [arguments, code] : cases) {
        arguments.insert(arguments.begin(), "settings");
        const Outcome result = runWith(arguments);
        EXPECT_EQ(result.code, code) << testing::PrintToString(arguments);
        EXPECT_EQ(std::count(result.errors.begin(), result.errors.end(), '\n'), 1) << result.errors;
    }
    EXPECT_EQ(fileText(file), before);
}

} // namespace

} // namespace ovwpaint::test
