// A store that is too damaged to be opened where it lies.
#pragma once

#include <string>

namespace cfql::tool {

// A copy of a store's file in a directory of its own, for as long as the object lives: cut-off pages are there again,
// as zeroes. Only its owner may read it.
class PaddedCopy {
  public:
    explicit PaddedCopy(const std::string& store);
    ~PaddedCopy();
    PaddedCopy(const PaddedCopy&) = delete;
    PaddedCopy& operator=(const PaddedCopy&) = delete;

    const std::string& path() const { return path_; }  // empty when there is nothing to be copied

  private:
    std::string directory_;
    std::string path_;
};

}  // namespace cfql::tool
