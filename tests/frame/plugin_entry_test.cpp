#include <gtest/gtest.h>

#include "frame/log_message.h"
#include "tests/frame/plugin_test_support.h"
#include "vrxcore/repository.h"

namespace installedapps_col {
namespace {

using Lines = std::vector<std::pair<int, std::string>>;

TEST(PluginEntry, LoggingStaysOffUntilRegistrationThenStaysOn) {
  LogCapture log;
  LogMessage* logger = LogMessage::getInstance();
  EXPECT_EQ(logger, LogMessage::getInstance());
  logger->logDebug("before registration");
  EXPECT_TRUE(log.lines().empty());

  NZARVEK20::IPluginCallbacks& plugin = registeredPlugin();
  logger->logError("error");
  logger->logDebug("debug");
  logger->logTrace("trace");
  logger->logDebug("");
  plugin.DeInit();
  logger->logDebug("after DeInit");
  EXPECT_EQ(log.lines(), (Lines{{0, "error"},
                                {3, "debug"},
                                {4, "trace"},
                                {3, "TInstalledAppsCallbacks::DeInit -De-Initializing the plugin."},
                                {3, "after DeInit"}}));
}

TEST(PluginEntry, AnswersTheHostAndLogsItsLifecycle) {
  NZARVEK20::IPluginCallbacks& plugin = registeredPlugin();
  EXPECT_EQ(pluginManager().GetPlugins().size(), 1u);
  EXPECT_EQ(plugin.ZeroAnswerQuery("anything"), 0);
  auto* query = dynamic_cast<NZARVEK20::IPluginBasicQueryCallbacks*>(&plugin);
  ASSERT_NE(query, nullptr);

  LogCapture log;
  plugin.Init();
  query->OnBasicQuery(NZARVEK20::TRepositoryNamespace::Create("root/test"), {});
  plugin.DeInit();
  query->OnBasicQuery(NZARVEK20::TRepositoryNamespace::Create("root/test"), {});
  EXPECT_EQ(log.lines(), (Lines{{3, "TInstalledAppsCallbacks::Init -Initializing the plugin."},
                                {3, "Normal exit from plugin."},
                                {3, "TInstalledAppsCallbacks::DeInit -De-Initializing the plugin."},
                                {3, "Normal exit from plugin."}}));
}

TEST(PluginEntry, SystemErrorTextKeepsItsLineEnd) {
  LogMessage* logger = LogMessage::getInstance();
  const std::string text = logger->getSystemErrorText(5);
  ASSERT_GE(text.size(), 2u);
  EXPECT_EQ(text.substr(text.size() - 2), "\r\n");
  EXPECT_EQ(logger->getSystemErrorText(0xDEADBEEF), "");
}

}  // namespace
}  // namespace installedapps_col
