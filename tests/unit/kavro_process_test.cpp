// The command processor, and file and device lookup.
#include <fcntl.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>
#include <string>

#include "test_support.h"

namespace {

using kvtest::ReadFile;

using kvtest::TempDir;

class KavroProcess : public ::testing::Test {
protected:
    void SetUp() override { kavro::t_StackClear(); }
    void TearDown() override { kavro::t_StackClear(); }
    kvtest::Context ctx;
};

// ---- t_system ----------------------------------------------------------------------------

TEST_F(KavroProcess, SuccessLeavesZero) {
    errno = 55;
    EXPECT_EQ(kavro::t_system("exit 0"), 0);
    EXPECT_EQ(errno, 0);
    errno = 55;
    EXPECT_EQ(kavro::t_system("true"), 0);
    EXPECT_EQ(errno, 0);
}

TEST_F(KavroProcess, ExitStatusInErrnoAndResult) {
    errno = 0;
    EXPECT_EQ(kavro::t_system("exit 3"), 3);
    EXPECT_EQ(errno, 3);
    EXPECT_EQ(kavro::t_system("false"), 1);
    EXPECT_EQ(errno, 1);
}

TEST_F(KavroProcess, KilledBySignalGivesOneTwentyEightPlusSignal) {
    errno = 0;
    EXPECT_EQ(kavro::t_system("kill -9 $$"), 128 + 9);
    EXPECT_EQ(errno, 137);
}

TEST_F(KavroProcess, UnknownCommandIsTheShellsStatus) {
    EXPECT_EQ(kavro::t_system("no_such_command_kvexec_unit 2>/dev/null"), 127);
    EXPECT_EQ(errno, 127);
}

TEST_F(KavroProcess, RunsThroughTheShell) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string out = dir / "out";
    std::string cmd = "X=5; if [ $X -gt 2 ]; then echo big; fi > " + out;
    EXPECT_EQ(kavro::t_system(cmd.c_str()), 0);
    EXPECT_EQ(ReadFile(out), "big\n");
}

TEST_F(KavroProcess, StackedTextIsTheCommandsInput) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string file = dir / "stacked";
    kavro::t_StackWrite("hello\nworld\n");
    std::string cmd = "cat > " + file;
    EXPECT_EQ(kavro::t_system(cmd.c_str()), 0);
    EXPECT_EQ(ReadFile(file), "hello\nworld\n");
}

TEST_F(KavroProcess, StackedTextWithoutLineFeed) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string file = dir / "stacked";
    kavro::t_StackWrite("yes");
    std::string cmd = "cat > " + file;
    EXPECT_EQ(kavro::t_system(cmd.c_str()), 0);
    EXPECT_EQ(ReadFile(file), "yes");
}

TEST_F(KavroProcess, StackedLineReadByTheShell) {
    kavro::t_StackWrite("7\n");
    EXPECT_EQ(kavro::t_system("read n; exit $n"), 7);
}

TEST_F(KavroProcess, OutputIsWrittenBeforeTheCommandRuns) {
    kavro::TermWrite("before");
    EXPECT_EQ(ctx.output, "");
    kavro::t_system("true");
    EXPECT_EQ(ctx.output, "before");
}

TEST_F(KavroProcess, OutputAndCommandOutputKeepTheirOrder) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string file = dir / "stdout";
    kavro::TermCapture(nullptr);
    fflush(stdout);
    int saved = dup(1);
    ASSERT_GE(saved, 0);
    int fd = open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    ASSERT_GE(fd, 0);
    dup2(fd, 1);
    close(fd);

    kavro::TermWrite("before\r");
    kavro::t_system("echo after");
    kavro::TermWrite("end");
    kavro::TermFlush();

    fflush(stdout);
    dup2(saved, 1);
    close(saved);
    kavro::TermCapture(&ctx.output);
    EXPECT_EQ(ReadFile(file), "before\rafter\nend");
}

// ---- t_Device and t_Locate ---------------------------------------------------------------

TEST_F(KavroProcess, RegularFile) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string file = dir / "plain";
    {
        std::ofstream out(file, std::ios::binary);
        out << "12345";
    }
    EXPECT_EQ(kavro::t_Device(file.c_str()), 2);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, file.c_str()), 2);
    EXPECT_EQ(info.iKind, 2);
    EXPECT_EQ(info.iOwner, static_cast<int>(getuid()));
    EXPECT_EQ(info.llSize, 5);
}

TEST_F(KavroProcess, Directory) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    EXPECT_EQ(kavro::t_Device(dir.sPath.c_str()), 2);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, dir.sPath.c_str()), 2);
    EXPECT_EQ(info.iKind, 8);
    EXPECT_EQ(info.iOwner, static_cast<int>(getuid()));
}

TEST_F(KavroProcess, Fifo) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string fifo = dir / "pipe";
    ASSERT_EQ(mkfifo(fifo.c_str(), 0600), 0);
    EXPECT_EQ(kavro::t_Device(fifo.c_str()), 2);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, fifo.c_str()), 2);
    EXPECT_EQ(info.iKind, 64);
}

TEST_F(KavroProcess, DanglingSymbolicLink) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string link = dir / "dangling";
    std::string target = dir / "nothing-here";
    ASSERT_EQ(symlink(target.c_str(), link.c_str()), 0);
    EXPECT_EQ(kavro::t_Device(link.c_str()), 2);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, link.c_str()), 2);
    EXPECT_EQ(info.iKind, 128);
}

TEST_F(KavroProcess, SymbolicLinkToFileIsTheFile) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string file = dir / "target";
    std::string link = dir / "link";
    {
        std::ofstream out(file, std::ios::binary);
        out << "abc";
    }
    ASSERT_EQ(symlink(file.c_str(), link.c_str()), 0);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, link.c_str()), 2);
    EXPECT_EQ(info.iKind, 2);
}

TEST_F(KavroProcess, Socket) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string path = dir / "sock";
    int s = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_GE(s, 0);
    sockaddr_un addr{};
    addr.sun_family = AF_UNIX;
    ASSERT_LT(path.size(), sizeof addr.sun_path);
    strcpy(addr.sun_path, path.c_str());
    ASSERT_EQ(bind(s, reinterpret_cast<sockaddr*>(&addr), sizeof addr), 0);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, path.c_str()), 2);
    EXPECT_EQ(info.iKind, 512);
    close(s);
}

TEST_F(KavroProcess, MissingPath) {
    TempDir dir;
    ASSERT_FALSE(dir.sPath.empty());
    std::string missing = dir / "missing";
    EXPECT_EQ(kavro::t_Device(missing.c_str()), 2);
    kavro::CFileInfo info;
    EXPECT_EQ(kavro::t_Locate(info, missing.c_str()), 2);
    EXPECT_EQ(kavro::t_Locate(info, "/no/such/dir/kvexec"), 2);
}

TEST_F(KavroProcess, CharacterDevice) {
    EXPECT_EQ(kavro::t_Device("/dev/null"), 3);
    kavro::CFileInfo info;
    EXPECT_NE(kavro::t_Locate(info, "/dev/null"), 2);
    EXPECT_EQ(info.iKind, 16);
}

TEST_F(KavroProcess, CallerIdentity) {
    EXPECT_EQ(kavro::c_getuid(), static_cast<int>(getuid()));
    EXPECT_EQ(kavro::c_getpid(), static_cast<int>(getpid()));
}

}  // namespace
