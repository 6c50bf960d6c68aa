#include "OstrelPlatform/Linux/Files/FileSystemRecycleManagerBackend.h"

#include "Support/FakeWorkspace.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace Ostrel {
namespace {

namespace fs = std::filesystem;

/// A home, a mounted volume and a classic one, all in one temporary folder. `%` in a path stands for the user's number.
class TrashTest : public testing::Test {
protected:
    TrashTest() {
        fs::create_directories(folder.path() + "/home");
        fs::create_directories(folder.path() + "/disk");
        fs::create_directories(folder.path() + "/Volumes/Old");
        writeMountInfo();
    }

    std::string real(std::string path) const {
        for (auto at = path.find('%'); at != std::string::npos; at = path.find('%'))
            path.replace(at, 1, std::to_string(getuid()));
        return folder.path() + "/" + path;
    }
    void write(const std::string& path, std::string_view bytes) const {
        folder.write(real(path).substr(folder.path().size() + 1), bytes);
    }
    void link(const std::string& target, const std::string& path) const {
        fs::create_directories(fs::path(real(path)).parent_path());
        fs::create_symlink(target, real(path));
    }
    bool exists(const std::string& path) const { return fs::exists(fs::symlink_status(real(path))); }
    void writeMountInfo() {
        write("mountinfo",
            "1 0 0:1 / " + real("disk") + " rw - ext4 /dev/sdb1 rw\n2 0 0:2 / " + real("gone")
                + " rw - vfat /dev/sdc1 rw\n");
    }
    TrashPlaces places() const {
        return {real("home"), real("home/.local/share"), getuid(), real("mountinfo"), real("Volumes")};
    }
    /// The folders that stand for these drives, those of this machine left out.
    std::string resolved(const std::string& drives) const {
        std::string text;
        for (const auto& trash : TrashFolders(places()).resolve(drives)) {
            if (trash.path.starts_with(folder.path()))
                text += trash.path.substr(folder.path().size() + 1) + " ";
        }
        const auto user = std::to_string(getuid());
        for (const std::string before : {".Trashes/", ".Trash-", ".Trash/"}) {
            for (auto at = text.find(before + user); at != std::string::npos; at = text.find(before + user))
                text.replace(at + before.size(), user.size(), "%");
        }
        return text;
    }
    std::string drives(std::string text) const {
        for (auto at = text.find('@'); at != std::string::npos; at = text.find('@'))
            text.replace(at, 1, folder.path());
        return text;
    }

    TemporaryFolder folder;
    std::vector<std::string> log;
    FakeWorkspace workspace{log};
};

std::string shown(const RecycleBinSnapshot& snapshot) {
    return std::to_string(snapshot.itemCount) + " items of " + std::to_string(snapshot.totalSize);
}

TEST(MountTable, listsWhereTrashCanBe) {
    const auto volumes
        = MountTable::parse("22 27 0:21 / /proc rw,relatime - proc proc rw\n"
                            "27 1 254:0 / / rw,relatime shared:1 - ext4 /dev/vda rw\n"
                            "40 27 8:1 / /media/My\\040Disk\\134 rw shared:2 master:1 - vfat /dev/sda1 rw\n"
                            "41 27 8:1 / /media/My\\040Disk\\134 rw - vfat /dev/sda1 rw\n"
                            "42 27 0:50 / /net/server rw - nfs4 server:/ rw\n"
                            "43 27 0:51 / /misc rw - autofs systemd-1 rw\n"
                            "44 27 0:52 / /home rw - fuseblk /dev/sdb rw\n"
                            "45 27 0:53 / relative rw - ext4 /dev/sdb rw\n"
                            "46 27 0:54 / /no/type rw -\n"
                            "47 27 0:54 / /no/separator rw ext4 /dev/sdb\n"
                            "48\n - ext4\n"
                            "49 27 8:2 / /odd\\04\\999\\ rw - ext4 /dev/sdd rw");
    EXPECT_THAT(volumes, testing::ElementsAre("/", "/media/My Disk\\", "/home", "/odd\\04\\999\\"));
}

TEST_F(TrashTest, findsTheFoldersThatDrivesStandFor) {
    const std::string all = "home/.local/share/Trash/files disk/.Trash-%/files home/.Trash Volumes/Old/.Trashes/% ";
    for (const char* path : {"home/.local/share/Trash/files", "disk/.Trash-%/files", "home/.Trash",
             "Volumes/Old/.Trashes/%", "disk/.Trashes/%", "disk/.Trash", "other/.TRASH", "other/.Trashes"})
        fs::create_directories(real(path));
    write("file/.Trash", "no folder");
    const struct {
        std::string drives, folders;
    } rows[] = {
        {"ALL", all},
        {" all ", all},
        {"", all},
        {"C:", all},
        {"C:\\|D:\\ ; e:", all},
        {"relative/path,~someone", all},
        {"@/missing,@/file/.Trash,@/file", all},
        {"@/disk", "disk/.Trashes/% disk/.Trash disk/.Trash-%/files "},
        {"@/disk/../disk//", "disk/.Trashes/% disk/.Trash disk/.Trash-%/files "},
        {"~/.Trash", "home/.Trash "},
        {"~", "home/.local/share/Trash/files home/.Trash "},
        {"@\\home\\.trash|@\\other\\.TRASH", "other/.TRASH "},
        {"C:,@/disk/.Trash", "disk/.Trash "},
        {"ALL;@/disk;~/.Trash", all + "disk/.Trashes/% disk/.Trash "},
        {"@/disk|ALL",
            "disk/.Trashes/% disk/.Trash disk/.Trash-%/files home/.local/share/Trash/files home/.Trash "
            "Volumes/Old/.Trashes/% "},
    };
    for (const auto& row : rows)
        EXPECT_EQ(resolved(drives(row.drives)), row.folders) << row.drives;
}

TEST_F(TrashTest, takesOneFolderOnceAndNoneBehindALink) {
    write("home/.local/share/Trash/files/a", "1");
    write("private/files/precious", "1");
    write("private/%/files/precious", "1");
    link("../private", "disk/.Trash-%");
    link(real("home/.local/share/Trash/files"), "home/.Trash");
    link(real("private"), "Volumes/Old/.Trashes/%");
    EXPECT_EQ(resolved("ALL"), "home/.local/share/Trash/files ");
    EXPECT_EQ(resolved(drives("@/disk,~/.Trash,@/Volumes/Old")), "home/.local/share/Trash/files ")
        << "nothing is there, so all is meant";
    // The same volume, mounted twice.
    fs::remove(real("disk/.Trash-%"));
    write("disk/.Trash-%/files/b", "1");
    fs::create_directories(real("again"));
    link(real("disk"), "again/disk");
    EXPECT_EQ(resolved(drives("@/disk,@/again/disk")), "disk/.Trash-%/files ");
    fs::remove_all(real("disk/.Trash-%/files"));
    link(real("private/files"), "disk/.Trash-%/files");
    EXPECT_EQ(resolved("ALL"), "home/.local/share/Trash/files ");
}

TEST_F(TrashTest, neverTakesTheTrashThatAllUsersShareAsAWhole) {
    write("disk/.Trash/%/files/mine", "123");
    write("disk/.Trash/%/info/mine.trashinfo", "[Trash Info]");
    write("disk/.Trash/4242/files/anothers", "12345");
    fs::create_directories(real("home/.local/share/Trash/files"));
    FileSystemRecycleManagerBackend backend(workspace, places());
    EXPECT_EQ(shown(backend.snapshot(drives("@/disk"))), "2 items of 20")
        << "without the sticky bit it is a classic one";
    EXPECT_EQ(resolved("ALL"), "home/.local/share/Trash/files ");
    chmod(real("disk/.Trash").c_str(), 01777);
    for (const char* list : {"@/disk", "@/disk/.Trash"})
        EXPECT_EQ(resolved(drives(list)), "disk/.Trash/%/files ") << list;
    EXPECT_EQ(resolved("ALL"), "home/.local/share/Trash/files disk/.Trash/%/files ");
    backend.emptyBin(drives("@/disk"));
    EXPECT_FALSE(exists("disk/.Trash/%/files/mine"));
    EXPECT_FALSE(exists("disk/.Trash/%/info/mine.trashinfo"));
    EXPECT_TRUE(exists("disk/.Trash/4242/files/anothers"));
    fs::rename(real("disk/.Trash"), real("shared"));
    link("../shared", "disk/.Trash");
    EXPECT_EQ(resolved("ALL"), "home/.local/share/Trash/files ");
}

TEST_F(TrashTest, countsWhatLiesThereAndSumsWhatItHolds) {
    const std::string trash = "home/.local/share/Trash/files/";
    FileSystemRecycleManagerBackend backend(workspace, places());
    const auto list = drives("@/home");
    write("home/outside", std::string(5000, 'x'));
    write(trash + "file", "12345");
    write(trash + ".hidden", "1");
    write(trash + ".DS_Store", "ignored");
    write(trash + "folder/a", "123");
    write(trash + "folder/.DS_Store", "123456");
    write(trash + "folder/sub/.deep/b", "1234567");
    fs::create_directories(real(trash + "empty"));
    link("../../../../outside", trash + "link");
    link("..", trash + "folder/up");
    link("b", trash + "a");
    link("a", trash + "b");
    link(".", trash + "self");
    const auto linkBytes = std::string("../../../../outside").size() + 2 + 1 + 1 + 1;
    EXPECT_EQ(shown(backend.snapshot(list)), "8 items of " + std::to_string(5 + 1 + 3 + 6 + 7 + linkBytes));
    EXPECT_EQ(backend.itemCount(list), 8);
    // More come on another volume, one of them among those already counted.
    write("disk/.Trash-%/files/c", "12");
    EXPECT_EQ(shown(backend.snapshot(drives("@/disk"))), "1 items of 2");
    const auto before = backend.itemCount("ALL");
    write("home/.Trash/d", "123");
    EXPECT_EQ(backend.itemCount("ALL"), before + 1);
}

TEST_F(TrashTest, emptiesTheTrashAndNothingElse) {
    const std::string trash = "home/.local/share/Trash/";
    write("home/outside/precious", "precious");
    write("home/.local/share/Trash/directorysizes", "9 1 folder");
    for (const char* name : {"file", "folder/sub/deep", "folder/other", ".DS_Store"})
        write(trash + "files/" + name, "123");
    link(real("home/outside"), trash + "files/link");
    link(real("home/outside"), trash + "files/folder/link");
    ASSERT_EQ(mkfifo(real(trash + "files/pipe").c_str(), 0600), 0);
    for (const char* name : {"file", "folder", "link", "pipe", "elsewhere"})
        write(trash + "info/" + name + ".trashinfo", "[Trash Info]");
    write("home/.Trash/classic", "1");
    FileSystemRecycleManagerBackend backend(workspace, places());
    backend.emptyBin(drives("~"));
    EXPECT_EQ(shown(backend.snapshot(drives("~"))), "0 items of 0");
    EXPECT_TRUE(exists("home/outside/precious"));
    EXPECT_TRUE(exists(trash + "files/.DS_Store"));
    EXPECT_FALSE(exists("home/.Trash/classic"));
    EXPECT_FALSE(exists(trash + "directorysizes"));
    std::vector<std::string> records;
    for (const auto& entry : fs::directory_iterator(real(trash + "info")))
        records.push_back(entry.path().filename());
    EXPECT_THAT(records, testing::ElementsAre("elsewhere.trashinfo")) << "it may be on its way here";
    // A folder of records that is a link leads elsewhere.
    fs::rename(real(trash + "info"), real("home/records"));
    link(real("home/records"), trash + "info");
    write(trash + "files/elsewhere", "1");
    backend.emptyBin(drives("~"));
    EXPECT_FALSE(exists(trash + "files/elsewhere"));
    EXPECT_TRUE(exists("home/records/elsewhere.trashinfo"));
}

/// Of a process that acts for somebody who may not do all: the superuser may.
class AsNobody {
public:
    AsNobody() {
        constexpr uid_t Nobody = 65534;
        isRoot_ = geteuid() == 0 && seteuid(Nobody) == 0;
    }
    ~AsNobody() {
        if (isRoot_ && seteuid(0) != 0)
            abort();
    }
    AsNobody(const AsNobody&) = delete;
    AsNobody& operator=(const AsNobody&) = delete;

private:
    bool isRoot_ = false;
};

TEST_F(TrashTest, leavesWhatItMayNotTouchWithItsRecord) {
    write("disk/.Trashes/%/a", "123");
    write("disk/.Trashes/%/closed/b", "12345");
    write("disk/.Trash-%/files/kept", "1");
    write("disk/.Trash-%/info/kept.trashinfo", "[Trash Info]");
    write("home/.local/share/Trash/files/c", "1");
    constexpr auto Everybody = static_cast<fs::perms>(0555);
    fs::permissions(folder.path(), Everybody, fs::perm_options::add);
    for (const auto& entry : fs::recursive_directory_iterator(folder.path()))
        fs::permissions(entry, Everybody, fs::perm_options::add);
    fs::permissions(real("disk/.Trashes/%/closed"), fs::perms::none);
    fs::permissions(real("disk/.Trash-%/files"), Everybody);
    FileSystemRecycleManagerBackend backend(workspace, places());
    const auto list = drives("@/disk");
    {
        const AsNobody nobody;
        EXPECT_EQ(shown(backend.snapshot(list)), "3 items of 4") << "a closed folder is empty";
        backend.emptyBin(list);
        EXPECT_TRUE(exists("disk/.Trash-%/files/kept"));
        EXPECT_TRUE(exists("disk/.Trash-%/info/kept.trashinfo"));
    }
    fs::permissions(real("disk/.Trashes/%"), fs::perms::none);
    fs::permissions(real("disk/.Trash-%"), fs::perms::none);
    {
        const AsNobody nobody;
        EXPECT_EQ(shown(backend.snapshot(list)), "0 items of 0") << "it is there, so it is not replaced by all";
    }
    for (const char* path : {"disk/.Trashes/%", "disk/.Trashes/%/closed", "disk/.Trash-%", "disk/.Trash-%/files"})
        fs::permissions(real(path), fs::perms::owner_all);
    EXPECT_TRUE(exists("disk/.Trashes/%/closed/b"));
}

TEST_F(TrashTest, measuresAndRemovesATreeDeeperThanAPathCanName) {
    constexpr int Depth = 3000;
    const auto trash = real("home/.Trash");
    fs::create_directories(trash);
    int folderDescriptor = open(trash.c_str(), O_RDONLY | O_DIRECTORY);
    for (int i = 0; i < Depth; ++i) {
        ASSERT_EQ(mkdirat(folderDescriptor, "d", 0700), 0);
        const int file = openat(folderDescriptor, "f", O_WRONLY | O_CREAT, 0600);
        ASSERT_EQ(::write(file, "12", 2), 2);
        close(file);
        const int child = openat(folderDescriptor, "d", O_RDONLY | O_DIRECTORY);
        close(folderDescriptor);
        folderDescriptor = child;
    }
    close(folderDescriptor);
    FileSystemRecycleManagerBackend backend(workspace, places());
    const auto descriptors = [] { return std::distance(fs::directory_iterator("/proc/self/fd"), {}); };
    const auto before = descriptors();
    EXPECT_EQ(shown(backend.snapshot("~/.Trash")), "2 items of " + std::to_string(2 * Depth));
    backend.emptyBin("~/.Trash");
    EXPECT_EQ(shown(backend.snapshot("~/.Trash")), "0 items of 0");
    EXPECT_TRUE(fs::is_empty(trash));
    EXPECT_EQ(descriptors(), before);
}

TEST_F(TrashTest, survivesFilesThatComeAndGoWhileItLooks) {
    fs::create_directories(real("home/.Trash/folder"));
    write("home/precious", "1");
    std::atomic<bool> isOver = false;
    std::thread other([&] {
        for (int i = 0; !isOver; i = (i + 1) % 50) {
            const auto path = real("home/.Trash/folder/" + std::to_string(i));
            std::error_code ignored;
            fs::remove_all(path, ignored);
            if (i % 3 == 0)
                fs::create_directory(path, ignored);
            else if (i % 3 == 1)
                fs::create_directory_symlink(real("home"), path, ignored);
            else
                std::ofstream(path) << "1";
            fs::create_directory(real("home/.Trash/folder"), ignored);
        }
    });
    FileSystemRecycleManagerBackend backend(workspace, places());
    for (int i = 0; i < 200; ++i) {
        EXPECT_LE(backend.snapshot("~/.Trash").itemCount, 1);
        if (i % 10 == 0)
            backend.emptyBin("~/.Trash");
    }
    isOver = true;
    other.join();
    EXPECT_TRUE(exists("home/precious"));
}

constexpr int NotPermitted = 77;

/// Lets this process mount, for itself alone; as the same user in a user namespace where it needs one.
bool mayMount() {
    const auto user = std::to_string(getuid());
    const auto group = std::to_string(getgid());
    if (unshare(CLONE_NEWNS) != 0) {
        if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
            return false;
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << user + " " + user + " 1";
        std::ofstream("/proc/self/gid_map") << group + " " + group + " 1";
    }
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

TEST_F(TrashTest, followsWhatIsMountedAndNeverCrossesIntoIt) {
    const auto inOwnMounts = [&] {
        if (!mayMount() || mount("none", real("disk").c_str(), "tmpfs", 0, nullptr) != 0)
            return NotPermitted;
        auto here = places();
        here.mountInfoFile = "/proc/self/mountinfo";
        FileSystemRecycleManagerBackend backend(workspace, here);
        const auto before = backend.itemCount("ALL");
        write("disk/.Trash-%/files/a", "123");
        write("disk/.Trash-%/info/a.trashinfo", "[Trash Info]");
        EXPECT_EQ(backend.itemCount("ALL"), before + 1);
        write("disk/precious/b", "12345");
        write("home/precious/c", "1234567");
        for (const std::string from : {"disk", "home"}) {
            const auto within = real("disk/.Trash-%/files/of-" + from);
            fs::create_directories(within);
            EXPECT_EQ(mount(real(from + "/precious").c_str(), within.c_str(), nullptr, MS_BIND, nullptr), 0);
        }
        EXPECT_EQ(shown(backend.snapshot(drives("@/disk"))), "3 items of 3");
        // Not all: the trash of this machine is somebody's.
        backend.emptyBin(drives("@/disk"));
        EXPECT_FALSE(exists("disk/.Trash-%/files/a"));
        EXPECT_FALSE(exists("disk/.Trash-%/info/a.trashinfo"));
        EXPECT_TRUE(exists("disk/precious/b"));
        EXPECT_TRUE(exists("home/precious/c"));
        EXPECT_EQ(backend.itemCount("ALL"), before + 2);
        EXPECT_EQ(umount2(real("disk").c_str(), MNT_DETACH), 0);
        EXPECT_EQ(backend.itemCount("ALL"), before);
        return HasFailure() ? 1 : 0;
    };
    const pid_t child = fork();
    if (child == 0)
        _exit(inOwnMounts());
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    if (WEXITSTATUS(status) == NotPermitted)
        GTEST_SKIP() << "mounting is not permitted";
    EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(TrashTest, opensTheDesktopsViewOrElseTheFolder) {
    FileSystemRecycleManagerBackend backend(workspace, places());
    write("disk/.Trashes/%/a", "1");
    backend.openBin("~");
    EXPECT_THAT(log, testing::ElementsAre("url trash:///")) << "there is none yet";
    fs::create_directories(real("home/.local/share/Trash/files"));
    backend.openBin("ALL");
    backend.openBin(drives("@/disk"));
    workspace.answer = false;
    backend.openBin("~");
    EXPECT_THAT(log,
        testing::ElementsAre("url trash:///", "url trash:///", "file " + real("disk/.Trashes/%"), "url trash:///",
            "file " + real("home/.local/share/Trash/files")));
}

TEST(TrashPlaces, followTheEnvironmentWhenItNamesAFolder) {
    const auto home = std::string(std::getenv("HOME") ? std::getenv("HOME") : "");
    const auto data = std::string(std::getenv("XDG_DATA_HOME") ? std::getenv("XDG_DATA_HOME") : "");
    setenv("HOME", "/home/me", 1);
    unsetenv("XDG_DATA_HOME");
    EXPECT_EQ(TrashPlaces::ofUser().dataHome, "/home/me/.local/share");
    setenv("XDG_DATA_HOME", "relative", 1);
    EXPECT_EQ(TrashPlaces::ofUser().dataHome, "/home/me/.local/share");
    setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(TrashPlaces::ofUser().dataHome, "/data");
    setenv("HOME", home.c_str(), 1);
    data.empty() ? unsetenv("XDG_DATA_HOME") : setenv("XDG_DATA_HOME", data.c_str(), 1);
}

} // namespace
} // namespace Ostrel
