#include "write_guard.h"

#include <sys/stat.h>

#include <algorithm>

#include "copy_image.h"

WriteGuard::WriteGuard(const StoreConfig& config) : config_(config) {}

std::string WriteGuard::Begin() {
  for (const CopyPlace& place : config_.copies) {
    struct stat status {};
    if (stat(place.path.c_str(), &status) != 0 || S_ISCHR(status.st_mode)) continue;
    Copy copy{std::make_unique<OpenCopy>(place), {}};
    std::string why = copy.file->Read(copy.before);
    if (!why.empty()) return why;
    copies_.push_back(std::move(copy));
  }
  return {};
}

std::string WriteGuard::Commit() {
  for (const Copy& copy : copies_) {
    Bytes now;
    std::string why = copy.file->Read(now);
    if (why.empty() && now != copy.before) why = copy.file->Sync();
    if (!why.empty()) return why;
  }
  return {};
}

std::string WriteGuard::RollBack() {
  std::string why;
  for (const Copy& copy : copies_) {
    Bytes now;
    if (!copy.file->Read(now).empty() || now != copy.before) why += copy.file->Write(copy.before);
  }
  return why;
}

size_t WriteGuard::FlagsRoom() const {
  size_t room = 0;
  for (const Copy& copy : copies_) room = std::max(room, ::FlagsRoom(copy.before, config_.Redundant()));
  return room;
}
