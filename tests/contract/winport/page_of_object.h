// The page of a named object, as every process of the home sees it.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "handle_support.h"
#include "winport/handles/object_page.h"

class Page final {
  public:
    explicit Page(const WideText& name) {
        const std::string file = std::string(std::getenv("WINPORT_HOME")) + "/kernel/global." +
                                 std::string(name.begin() + 7, name.end());
        const int descriptor = ::open(file.c_str(), O_RDWR | O_CLOEXEC);
        base_ = ::mmap(nullptr, winport::kPageSize, PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
        ::close(descriptor);
    }
    ~Page() { ::munmap(base_, winport::kPageSize); }
    Page(const Page&) = delete;
    Page& operator=(const Page&) = delete;
    winport::ObjectPage* operator->() const { return static_cast<winport::ObjectPage*>(base_); }

  private:
    void* base_;
};
