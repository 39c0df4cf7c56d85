// Linked into every test program: gives it its own empty home folder in the build tree before
// main begins, so that a test never touches the logs, alphas and settings of the person who runs
// it.

#include "programs.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

const char *const sourceFolder = MARLOWEN_SOURCE_DIR;

namespace {

namespace fs = std::filesystem;

/// The files of a test need not outlive the machine, and waiting for a busy disk takes longer than
/// many tests. Pipes and devices answer as ever.
int synced(long call, int descriptor)
{
    struct stat status = {};
    if (fstat(descriptor, &status) == 0 && (S_ISREG(status.st_mode) || S_ISDIR(status.st_mode)))
        return 0;
    return static_cast<int>(syscall(call, descriptor));
}

/// Set while a test program runs; a process that it starts keeps the home that the test gave it.
constexpr char marker[] = "MARLOWEN_TEST_HOME";

class TestHome
{
public:
    TestHome()
    {
        if (std::getenv(marker))
            return;
        fs::create_directories(MARLOWEN_TEST_HOMES);
        m_folder = std::string(MARLOWEN_TEST_HOMES "/") + program_invocation_short_name + ".XXXXXX";
        if (!mkdtemp(m_folder.data())) {
            std::perror(m_folder.c_str());
            std::_Exit(1);
        }
        m_owner = getpid();
        set(marker, "");
        set("HOME", "");
        set("XDG_CONFIG_HOME", "/.config");
        set("XDG_CACHE_HOME", "/.cache");
        set("XDG_DATA_HOME", "/.local/share");
        set("XDG_STATE_HOME", "/.local/state");
        set("XDG_RUNTIME_DIR", "/.run");
        mkdir((m_folder + "/.run").c_str(), S_IRWXU);
        // Compiled shaders are worth keeping from test to test.
        setenv("MESA_SHADER_CACHE_DIR", MARLOWEN_TEST_HOMES "/mesa", 0);
    }

    /// Removes the folder, unless this is a fork of the test.
    ~TestHome()
    {
        std::error_code ignored;
        if (m_owner == getpid())
            fs::remove_all(m_folder, ignored);
    }

    TestHome(const TestHome &) = delete;
    TestHome &operator=(const TestHome &) = delete;

private:
    void set(const char *variable, const char *below) const
    {
        setenv(variable, (m_folder + below).c_str(), 1);
    }

    std::string m_folder;
    pid_t m_owner = -1;
};

/// Constructed before, and destroyed after, every other static object of the program.
[[gnu::init_priority(101)]] const TestHome home;

} // namespace

// In place of those of the C library, for the program and the libraries it uses.
extern "C" int fsync(int descriptor)
{
    return synced(SYS_fsync, descriptor);
}
extern "C" int fdatasync(int descriptor)
{
    return synced(SYS_fdatasync, descriptor);
}

#ifdef __SANITIZE_ADDRESS__
/// Keeps libraries loaded, so that reports of leaks name the functions of graphics drivers too.
extern "C" int dlclose(void *)
{
    return 0;
}
#endif
