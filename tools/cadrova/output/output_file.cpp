#include "output/output_file.h"

#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <string_view>
#include <system_error>

#include "failure.h"
#include "output/console.h"

namespace cadrova::tools {
namespace {

using Path = std::filesystem::path;

constexpr char kStandardOutput[] = "/dev/stdout";

Path FolderOf(const Path& path) { return path.has_parent_path() ? path.parent_path() : "."; }

// Follows symbolic links, also to a file that does not exist yet. Ends at a link in /proc, which is
// an open file, whatever its name is now.
Path FollowLinks(Path path) {
  constexpr int kMaximum = 40;  // the kernel follows no more
  for (int i = 0; i < kMaximum; ++i) {
    struct statfs system;
    const bool is_in_proc =
        statfs(FolderOf(path).c_str(), &system) == 0 && system.f_type == PROC_SUPER_MAGIC;
    std::error_code error;
    const Path link = std::filesystem::read_symlink(path, error);
    if (error || is_in_proc) break;
    path = FolderOf(path) / link;
  }
  return path;
}

// Closes the file. On failure, this and the functions below return false and set errno.
bool WriteAndClose(int descriptor, std::string_view contents) {
  bool is_written = true;
  while (is_written && !contents.empty()) {
    const ssize_t size = write(descriptor, contents.data(), contents.size());
    is_written = size >= 0 || errno == EINTR;
    if (size > 0) contents.remove_prefix(static_cast<std::size_t>(size));
  }
  // Some file systems find out only here that they are full. Pipes and devices can't be synced.
  is_written = is_written && (fsync(descriptor) == 0 || errno == EINVAL || errno == EROFS);
  const int error = errno;
  const bool is_closed = close(descriptor) == 0;
  if (!is_written) errno = error;
  return is_written && is_closed;
}

// `old` is null if no file is at `path`.
bool Replace(const Path& path, const struct stat* old, const std::string& contents) {
  if (old != nullptr && access(path.c_str(), W_OK) != 0) return false;
  std::string name;
  int descriptor = -1;
  for (int i = 0; i < 100 && descriptor < 0; ++i) {
    name = FolderOf(path) / (".cadrova-" + std::to_string(getpid()) + '-' + std::to_string(i));
    descriptor = open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor < 0 && errno != EEXIST) return false;
  }
  if (descriptor < 0) return false;
  if (old != nullptr) {
    // Another owner is kept only if this user may set it. It comes first, because it resets modes.
    const bool has_owner = fchown(descriptor, old->st_uid, old->st_gid) == 0;
    fchmod(descriptor, old->st_mode & (has_owner ? 07777 : 0777));
  }
  if (WriteAndClose(descriptor, contents) && rename(name.c_str(), path.c_str()) == 0) return true;
  const int error = errno;
  unlink(name.c_str());
  errno = error;
  return false;
}

// Appends, so that an open file such as /dev/fd/3 keeps what was written to it.
bool Append(const Path& path, const std::string& contents) {
  const int descriptor = open(path.c_str(), O_WRONLY | O_APPEND | O_NOCTTY | O_CLOEXEC);
  return descriptor >= 0 && WriteAndClose(descriptor, contents);
}

bool WriteFile(const Path& path, const std::string& contents) {
  std::signal(SIGXFSZ, SIG_IGN);  // So that a write beyond the limit fails.
  const Path target = FollowLinks(path);
  struct stat old;
  const bool exists = lstat(target.c_str(), &old) == 0;
  if (!exists && errno == ENOENT) return Replace(target, nullptr, contents);
  return exists && S_ISREG(old.st_mode) ? Replace(target, &old, contents)
                                        : Append(target, contents);
}

bool IsSameFile(const std::string& one, const std::string& other) {
  struct stat first, second;
  return stat(one.c_str(), &first) == 0 && stat(other.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

}  // namespace

void RefuseInputs(const std::string& option, const std::string& path,
                  const std::vector<std::string>& inputs) {
  struct stat status;
  if (stat(path.c_str(), &status) == 0 && S_ISCHR(status.st_mode)) return;
  const auto is_same = [&](const std::string& input) { return IsSameFile(path, input); };
  const auto same = std::ranges::find_if(inputs, is_same);
  if (same == inputs.end()) return;
  throw Failure(option + ' ' + path + ": this would overwrite the input " + *same +
                "; name another file");
}

OutputFile::OutputFile(const std::string& option, const std::string& path,
                       const std::vector<std::string>& inputs)
    : option_(option), path_(path == "-" ? kStandardOutput : path), inputs_(inputs) {
  RefuseInputs(option_, path_, inputs_);
}

void OutputFile::Write(const std::string& contents) const {
  RefuseInputs(option_, path_, inputs_);
  // Through the same descriptor, so that what other commands print follows.
  if (path_ == kStandardOutput || IsSameFile(path_, kStandardOutput)) return Print(contents);
  if (WriteFile(path_, contents)) return;
  throw Failure(option_ + ' ' + path_ + ": " + std::generic_category().message(errno));
}

}  // namespace cadrova::tools
