// Errors of the system in the user's language.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>
#include <system_error>

#include "tests/rig/Environment.h"
#include "tools/common/ErrorTexts.h"

namespace {

using terminal::describe;
using terminal::messageOf;
using terminal::whyNotLoaded;

constexpr int kLastError = 133;

// What the loader says of a library that cannot be loaded.
std::string refusalOf(const std::string& library) {
  EXPECT_EQ(dlopen(library.c_str(), RTLD_NOW), nullptr);
  return whyNotLoaded(library, dlerror());
}

TEST(ErrorTexts, EnglishOnesAreTheSystems) {
  const rig::ScopedVariable language("LC_ALL", "C.UTF-8");
  for (int error = 1; error <= kLastError; ++error) {
    // A copy: describing the error may reuse the memory of strerror's text.
    const std::string expected = std::strerror(error);
    EXPECT_EQ(describe(error), expected);
  }
}

TEST(ErrorTexts, RussianOnesHaveNoEnglishWord) {
  const rig::ScopedVariable language("LC_ALL", "ru_RU.UTF-8");
  for (int error = 1; error <= kLastError; ++error) {
    const std::string text = describe(error);
    EXPECT_FALSE(std::any_of(text.begin(), text.end(), [](unsigned char byte) {
      return std::isalpha(byte) != 0;
    })) << text;
  }
  EXPECT_EQ(describe(ENOSPC), "на устройстве не осталось места");
  EXPECT_EQ(describe(ECHRNG), "ошибка " + std::to_string(ECHRNG));
}

TEST(ErrorTexts, OfAnExceptionOnlyTheSystemsPartIsTranslated) {
  const std::system_error full(ENOSPC, std::generic_category(), "scans.txt");
  const std::runtime_error other("scans.txt: No space left on device");
  {
    const rig::ScopedVariable language("LC_ALL", "ru_RU.UTF-8");
    EXPECT_EQ(messageOf(full), "scans.txt: на устройстве не осталось места");
    EXPECT_EQ(messageOf(other), other.what());
  }
  const rig::ScopedVariable language("LC_ALL", "C.UTF-8");
  EXPECT_EQ(messageOf(full), "scans.txt: No space left on device");
}

TEST(ErrorTexts, OfALibraryThatIsNotLoaded) {
  const rig::ScopedVariable language("LC_ALL", "ru_RU.UTF-8");
  EXPECT_EQ(refusalOf("/no/such.so"), "/no/such.so: нет такого файла или каталога");
  EXPECT_EQ(refusalOf("/dev/null"), "/dev/null: не разделяемая библиотека");
  EXPECT_EQ(refusalOf("/tmp"), "/tmp: это каталог");
  // As the loader writes them.
  EXPECT_THAT(whyNotLoaded("/a.so", "/a.so: wrong ELF class: ELFCLASS64"),
              testing::HasSubstr("-битная библиотека, а эта программа "));
  EXPECT_EQ(whyNotLoaded("/a.so", "/a.so: undefined symbol: GetClassNames"),
            "/a.so: не компонента: в ней нет GetClassNames");
  EXPECT_EQ(whyNotLoaded("/a.so",
                         "libXi.so.6: cannot open shared object file: No such file or "
                         "directory"),
            "/a.so: нужна библиотека, которая не установлена: libXi.so.6");
}

}  // namespace
