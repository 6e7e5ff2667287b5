// The name servers that the resolver's file names.
#ifndef ZQUTIL_RESOLVER_FILE_H
#define ZQUTIL_RESOLVER_FILE_H

#include <array>
#include <string>
#include <string_view>

class ResolverFile {
 public:
  // The next line of the file, with or without its line break. Names a server when it begins, after white space, with
  // "nameserver" in any case and something follows: that, to the end of the line, remarks and all, is the server.
  void AddLine(std::string_view line);
  // "" for one that the file does not name. Without the spaces and line breaks at the end; tabs stay.
  const std::string& First() const { return servers_[0]; }
  const std::string& Second() const { return servers_[1]; }
  // The last of the third and later ones.
  const std::string& Third() const { return servers_[2]; }

 private:
  std::array<std::string, 3> servers_;
  size_t count_ = 0;  // of servers named, 3 for more
};

#endif
