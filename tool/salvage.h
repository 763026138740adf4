// For a store that is too damaged to be opened in place.
#pragma once

#include <string>

namespace cfql::tool {

// A copy of a store's file in a temporary directory, which goes with this object. Missing pages at the end are filled
// with zeroes. Only the owner may read it.
class PaddedCopy {
  public:
    explicit PaddedCopy(const std::string& store);
    ~PaddedCopy();
    PaddedCopy(const PaddedCopy&) = delete;
    PaddedCopy& operator=(const PaddedCopy&) = delete;

    const std::string& path() const { return path_; }  // empty if there was nothing to copy

  private:
    std::string directory_;
    std::string path_;
};

}  // namespace cfql::tool
