// Memory that held names, credentials or keys: allocated for the model's records and for scratch
// images, and wiped before it is given back.
#pragma once

#include <cstddef>

namespace kvr {

// Memory of the given size in bytes, content undefined; given back with Release. Ends the process
// when there is none: a picture of who may reach which disks must not be half built.
void *Allocate(std::size_t size);

// As Allocate, filled with zero bytes.
void *AllocateZeroed(std::size_t size);

// Gives back memory of Allocate or AllocateZeroed; null is ignored. Does not wipe it.
void Release(void *memory);

// Fills memory with zero bytes, also where the compiler can see that nobody reads it afterwards.
void SecureZero(void *memory, std::size_t size);

// A zero-filled image on the heap, wiped when it goes out of scope.
template <class Image>
class Scratch {
 public:
  Scratch() : image_(static_cast<Image *>(AllocateZeroed(sizeof(Image)))) {}
  ~Scratch() {
    SecureZero(image_, sizeof(Image));
    Release(image_);
  }
  Scratch(const Scratch &) = delete;
  Scratch &operator=(const Scratch &) = delete;

  Image &operator*() { return *image_; }
  Image *operator->() { return image_; }

 private:
  Image *image_;
};

}  // namespace kvr
