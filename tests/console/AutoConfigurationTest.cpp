// From a machine that has nothing to a configured workstation, and again over one that has everything.
#include "console/AutoConfiguration.h"

#include "ConsoleTest.h"
#include "console/CheckConfiguration.h"
#include "console/Installation.h"
#include "console/LoadSettings.h"
#include "databases/UsersDatabase.h"

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

class AutoConfigurationTest : public ConsoleTest {
protected:
    AutoConfigurationTest() {
        machine.makeFolder("C:\\WINDOWS");
        LoadLocalSettings();
    }
    ~AutoConfigurationTest() override { ResetUsersState(); }
};

QStringList missing() {
    QStringList paths;
    for (const InstalledItem& item : LookAtInstallation())
        if (!item.present)
            paths += item.path;
    return paths;
}

} // namespace

TEST_F(AutoConfigurationTest, AMachineThatHasNothingBecomesAWorkstation) {
    prompts.answers = {Answer::Yes};
    prompts.files = {std::nullopt};
    EXPECT_TRUE(DefaultLocalInstall());
    EXPECT_EQ(missing(), QStringList());
    EXPECT_EQ(CheckConfiguration(), QString());
}
