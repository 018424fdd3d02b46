#include "support/Unprivileged.h"

#include <QFileInfo>
#include <QProcess>

#include <gtest/gtest.h>

#include <unistd.h>

bool rerunUnprivilegedWhenRoot()
{
    if (::geteuid() != 0)
        return false;
    const ::testing::TestInfo *test = ::testing::UnitTest::GetInstance()->current_test_info();
    const QString filter = QStringLiteral("--gtest_filter=%1.%2").arg(test->test_suite_name(), test->name());
    QProcess run;
    run.setProcessChannelMode(QProcess::MergedChannels);
    run.start(QStringLiteral("unshare"), {QStringLiteral("--user"), QStringLiteral("--map-user=1000"),
                                          QStringLiteral("--map-group=1000"),
                                          QFileInfo(QStringLiteral("/proc/self/exe")).canonicalFilePath(), filter});
    const bool finished = run.waitForFinished(240000);
    const QByteArray output = run.readAll();
    if (output.startsWith("unshare: unshare failed")) {
        ADD_FAILURE() << "this machine allows no user namespace, so the test cannot run as an ordinary user: "
                      << output.constData();
        return true;
    }
    EXPECT_TRUE(finished && run.exitStatus() == QProcess::NormalExit && run.exitCode() == 0) << output.constData();
    EXPECT_TRUE(output.contains("[  PASSED  ] 1 test.")) << "ran, not skipped: " << output.constData();
    return true;
}
