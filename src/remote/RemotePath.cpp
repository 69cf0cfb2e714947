#include "remote/RemotePath.h"

namespace corvane {

std::string PathBelow(const std::string& directory, std::string_view name) {
  std::string path = directory;
  if (!path.empty() && !path.ends_with('/')) path += '/';
  return path.append(name);
}

std::string PathFrom(const std::string& directory, const std::string& name) {
  return name.starts_with('/') ? name : PathBelow(directory, name);
}

std::string WithoutTrailingSlash(std::string path) {
  while (path.size() > 1 && path.ends_with('/')) path.pop_back();
  return path;
}

bool IsAtOrAbove(const std::string& path, const std::string& directory) {
  return directory == path || directory.starts_with(PathBelow(path, ""));
}

std::pair<std::string, std::string> SplitPath(const std::string& path) {
  const std::string whole = WithoutTrailingSlash(path);
  const std::size_t slash = whole.rfind('/');
  if (slash == std::string::npos) return {"", whole};
  return {whole.substr(0, slash == 0 ? 1 : slash), whole.substr(slash + 1)};
}

}  // namespace corvane
