#include "tests/fault/reliability/SmallDisk.h"

#include <sched.h>
#include <sys/mount.h>
#include <sys/statvfs.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

void Require(bool succeeded, const char* what) {
  if (!succeeded) throw SmallDisk::Refused(std::string(what) + ": " + std::strerror(errno));
}

void Write(const char* path, const std::string& text) {
  std::ofstream file(path);
  file << text << std::flush;
  Require(static_cast<bool>(file), path);
}

/// Mounts of this process's own: as the superuser, or else as one within a world of its own.
void SeparateMounts() {
  if (unshare(CLONE_NEWNS) != 0) {
    const std::string user = std::to_string(geteuid());
    const std::string group = std::to_string(getegid());
    Require(unshare(CLONE_NEWUSER | CLONE_NEWNS) == 0, "unshare");
    Write("/proc/self/setgroups", "deny");
    Write("/proc/self/uid_map", "0 " + user + " 1");
    Write("/proc/self/gid_map", "0 " + group + " 1");
  }
  Require(mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0, "mount /");
}

}  // namespace

SmallDisk::SmallDisk(std::string folder) : folder_(std::move(folder)) {
  SeparateMounts();
  std::filesystem::create_directories(folder_);
  const std::string size = "size=" + std::to_string(kBlock * kBlocks);
  Require(mount("tmpfs", folder_.c_str(), "tmpfs", 0, size.c_str()) == 0, "mount");
}

SmallDisk::~SmallDisk() {
  umount2(folder_.c_str(), MNT_DETACH);
}

long SmallDisk::FreeBlocks() const {
  struct statvfs status = {};
  if (statvfs(folder_.c_str(), &status) != 0) throw std::runtime_error("no size of the disk");
  return static_cast<long>(status.f_bavail * status.f_frsize) / kBlock;
}

bool SmallDisk::FillUpTo(long freeBlocks) const {
  const long surplus = FreeBlocks() - freeBlocks;
  if (surplus < 0) return false;
  const std::vector<char> zeros(static_cast<std::size_t>(surplus * kBlock));
  std::ofstream file(Filler(), std::ios::binary);
  file.write(zeros.data(), static_cast<std::streamsize>(zeros.size()));
  file.close();
  if (!file || FreeBlocks() != freeBlocks) throw std::runtime_error("the disk can't be filled");
  return true;
}

void SmallDisk::MakeRoom() const {
  std::filesystem::remove(Filler());
}
