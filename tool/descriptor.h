// A file descriptor, closed at the end of its scope.
#pragma once

#include <unistd.h>

namespace cfql::tool {

class Descriptor {
  public:
    // Owns `descriptor`; a negative one stands for a failed call and is left alone.
    explicit Descriptor(int descriptor) : descriptor_(descriptor) {}
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() {
        if (descriptor_ >= 0) close(descriptor_);
    }
    int get() const { return descriptor_; }

  private:
    int descriptor_;
};

}  // namespace cfql::tool
