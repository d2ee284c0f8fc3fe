#include "run_tool.h"

#include "config_tree.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace qx25test {

tool_result run_tool(const std::vector<std::string> &args, unsigned time_limit) {
    return run_program(QX25_TOOL, args, time_limit);
}

tool_result run_program(const std::string &program, const std::vector<std::string> &args,
                        unsigned time_limit) {
    char out_path[] = "/tmp/qx25-out-XXXXXX";
    char err_path[] = "/tmp/qx25-err-XXXXXX";
    int out_fd = ::mkstemp(out_path);
    int err_fd = ::mkstemp(err_path);

    pid_t child = ::fork();
    if (child == 0) {
        ::dup2(out_fd, STDOUT_FILENO);
        ::dup2(err_fd, STDERR_FILENO);
        int null_fd = ::open("/dev/null", O_RDONLY);
        ::dup2(null_fd, STDIN_FILENO);
        std::vector<char *> argv;
        std::string tool = program;
        argv.push_back(tool.data());
        std::vector<std::string> copies = args;
        for (std::string &arg : copies)
            argv.push_back(arg.data());
        argv.push_back(nullptr);
        // The alarm outlives the exec: the program is stopped at the limit.
        if (time_limit != 0) ::alarm(time_limit);
        ::execv(tool.c_str(), argv.data());
        ::_exit(127);
    }
    int wait_status = 0;
    ::waitpid(child, &wait_status, 0);
    ::close(out_fd);
    ::close(err_fd);

    tool_result result;
    result.status = WIFEXITED(wait_status) ? WEXITSTATUS(wait_status) : -1;
    result.timed_out = WIFSIGNALED(wait_status) && WTERMSIG(wait_status) == SIGALRM;
    result.out = read_file(out_path);
    result.err = read_file(err_path);
    ::unlink(out_path);
    ::unlink(err_path);
    return result;
}

} // namespace qx25test
