#pragma once

#include <unistd.h>
#include <utility>

namespace tessarine {

/// An open file of the kernel, closed when this object goes.
class FileDescriptor {
public:
    FileDescriptor() = default;

    /// Takes over what an opening call returned; a negative number is none.
    explicit FileDescriptor(int number) : number_(number) {}

    FileDescriptor(FileDescriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        if (this != &other) {
            close();
            number_ = std::exchange(other.number_, -1);
        }
        return *this;
    }

    ~FileDescriptor() { close(); }

    explicit operator bool() const { return number_ >= 0; }

    int number() const { return number_; }

private:
    void close() {
        if (number_ >= 0)
            ::close(number_);
    }

    int number_ = -1;
};

} // namespace tessarine
