// The documents' examples at work: whichever step fails, they tell, and no file goes to an earlier note.
#include "documented/Places.h"
#include "support/VantryTest.h"

#include <vantry.hpp>

#include <map>

void reportFire(const std::string& photo);                       // the README's
std::vector<ResponseStatus> reportFire(const Attachment& photo); // the hosts' page's

namespace
{
/// How many certificates are accepted before one is refused.
std::size_t accepted = 0;

struct Example
{
    std::string name;
    bool (*reports)(const std::string& photo); ///< without a failure
    void (*asksAboutCertificates)();           ///< from now on
};

const std::vector<Example> examples{
    {"OfTheReadme",
     [](const std::string& photo) {
         try {
             reportFire(photo);
             return true;
         } catch (const vantry::Error&) {
             return false;
         }
     },
     [] {
         vantry_set_certificate_callback([](void*, const char*, const std::uint8_t*, std::size_t,
                                            std::int32_t* trust) { *trust = accepted-- > 0 ? 1 : 0; },
                                         nullptr);
     }},
    {"OfTheHostsPage",
     [](const std::string& photo) {
         return reportFire(Attachment{photo, L"photo.jpg"}).empty();
     },
     [] { SetValidateCertificateCallback([](const CERT_CONTEXT&) { return accepted-- > 0; }); }}};

/// The sizes of each note's files, by the notes' ids.
using Files = std::map<int, std::vector<int>>;

class Documents : public VantryTest, public testing::WithParamInterface<Example>
{
protected:
    Documents()
    {
        Documented::endPoint = sandbox.http;
        Documented::user = sandbox.user;
        Documented::password = sandbox.password;
    }

    Files files() const
    {
        Files all;
        const auto state = sandbox.state();
        for (const auto& note : state.at("techNotes")) {
            all[note.at("id").get<int>()];
        }
        for (const auto& file : state.at("attachments")) {
            all[file.at("techNoteId").get<int>()].push_back(file.at("size").get<int>());
        }
        return all;
    }

    /// A fire of before, whose note could be taken for that of the next one.
    void reportEarlierFire()
    {
        sandbox.reset();
        EXPECT_TRUE(GetParam().reports("earlier"));
        EXPECT_EQ(files(), (Files{{2001, {7}}}));
    }
};

/// What the stand-in server has after a second fire that is reported up to this step.
struct Stage
{
    std::string name;
    Files files;
};

const std::vector<Stage> steps{{"session", {{2001, {7}}}},
                               {"ticket", {{2001, {7}}}},
                               {"note", {{2001, {7}}}},
                               {"file", {{2001, {7}}, {2002, {}}}},
                               {"end", {{2001, {7}}, {2002, {5}}}}};

/// By the code that the step itself does not have when it succeeds.
std::vector<Answer> failures(int otherSuccess)
{
    return {Answer::bytes("HTTP/1.1 500 \r\nContent-Length: 0\r\n\r\n"), // no text to show
            Answer(otherSuccess, R"({"id":9,"sessionKey":"key"})"),
            Answer(502, "<h1>Bad gateway</h1>", "text/html"), Answer::bytes("")};
}
} // namespace

TEST_P(Documents, ReportingTellsOfEachStepThatFails)
{
    for (std::size_t failing = 0; failing < steps.size(); ++failing) {
        const bool isOfSession = failing == 0 || failing == steps.size() - 1;
        for (auto& failure : failures(isOfSession ? 201 : 200)) {
            SCOPED_TRACE(steps[failing].name + ": " + failure.plan().dump());
            reportEarlierFire();
            sandbox.plan(failure.skip(static_cast<int>(failing)));
            EXPECT_FALSE(GetParam().reports("photo"));
            EXPECT_EQ(files(), steps[failing].files);
        }
    }
}

/// Nothing of the step is sent then, so that the library keeps the note of before.
TEST_P(Documents, ReportingTellsOfEachStepWhoseCertificateIsRefused)
{
    useHttps();
    Documented::endPoint = sandbox.https;
    for (std::size_t failing = 0; failing < steps.size(); ++failing) {
        SCOPED_TRACE(steps[failing].name);
        accepted = steps.size();
        reportEarlierFire();
        accepted = failing;
        GetParam().asksAboutCertificates();
        EXPECT_FALSE(GetParam().reports("photo"));
        EXPECT_EQ(files(), steps[failing].files);
    }
}

INSTANTIATE_TEST_SUITE_P(Example, Documents, testing::ValuesIn(examples),
                         [](const auto& info) { return info.param.name; });
