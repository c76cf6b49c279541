// Preloaded into a program, makes each of its syncs take a second longer.
#include <sys/syscall.h>
#include <unistd.h>

extern "C" {

int fsync(int file) {
    sleep(1);
    return static_cast<int>(syscall(SYS_fsync, file));
}

int fdatasync(int file) {
    sleep(1);
    return static_cast<int>(syscall(SYS_fdatasync, file));
}

int syncfs(int file) {
    sleep(1);
    return static_cast<int>(syscall(SYS_syncfs, file));
}

void sync() {
    sleep(1);
    syscall(SYS_sync);
}
}
