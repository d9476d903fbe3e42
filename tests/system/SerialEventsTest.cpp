// The event that the host gets for a scan: its source, its name and its data.
#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "tests/rig/HostCodes.h"
#include "tests/rig/RawDevice.h"
#include "tests/rig/UsbPort.h"

namespace {

using rig::base64;
using rig::kUsb1;
using rig::SerialDriver;
using terminal::Event;
using terminal::LineSetting;
using terminal::SerialLine;

const std::u16string kBarcodeScanner = u"СканерШтрихкода";
const std::u16string kInputDevice = u"УстройствоВвода";
const std::u16string kCardReader = u"СчитывательМагнитныхКарт";

// The event that one scan raises from a device that was opened with an equipment and a data type.
struct Raised {
  std::u16string equipment;
  std::int32_t dataType;
  const char16_t* russian;
  const char16_t* english;
  std::u16string data;
};

const std::string kScan = "A\x1D Ж1";
const std::u16string kText = u"A\x1D Ж1";
const std::u16string kReadable = u"A(029032208150)1";
const std::u16string kEncoded = base64(kScan);

const Raised kRaised[] = {
    {kBarcodeScanner, rig::kDataText, u"Штрихкод", u"Barcode", kText},
    {kBarcodeScanner, rig::kDataHumanReadable, u"Штрихкод", u"Barcode", kReadable},
    {kBarcodeScanner, rig::kDataBase64, u"ШтрихкодBase64", u"BarcodeBase64", kEncoded},
    {kInputDevice, rig::kDataBase64, u"ШтрихкодBase64", u"BarcodeBase64", kEncoded},
    {kCardReader, rig::kDataText, u"ДанныеКарты", u"TrackData", kText},
    {kCardReader, rig::kDataHumanReadable, u"Штрихкод", u"Barcode", kReadable},
    {kCardReader, rig::kDataBase64, u"ДанныеКартыBase64", u"TrackDataBase64", kEncoded},
    // Any other data type means text, and the event name follows from the bitwise or of both codes.
    {kBarcodeScanner, 3, u"Штрихкод", u"Barcode", kText},
    {kBarcodeScanner, 16, u"Штрихкод", u"Barcode", kText},
    {kBarcodeScanner, 18, u"ШтрихкодBase64", u"BarcodeBase64", kText},
    {kBarcodeScanner, 32, u"Штрихкод", u"Barcode", kText},
    {kBarcodeScanner, 99, u"Штрихкод", u"Barcode", kText},
    {kBarcodeScanner, -1, u"Штрихкод", u"Barcode", kText},
    {kCardReader, 16, u"Штрихкод", u"Barcode", kText},
    {kCardReader, 32, u"ДанныеКарты", u"TrackData", kText},
    {kCardReader, 34, u"ДанныеКартыBase64", u"TrackDataBase64", kText},
    {kCardReader, -1, u"Штрихкод", u"Barcode", kText},
};

// Opens a port for each row before the first scan: a device keeps the settings that it was opened
// with, whatever is set later.
void expectRaised(SerialDriver& driver, const char16_t* Raised::*name) {
  std::int32_t port = kUsb1;
  for (const Raised& raised : kRaised) {
    driver.plugIn(port);
    driver.component.setParameter(u"EquipmentType", raised.equipment);
    driver.component.setParameter(u"OutputDataType", raised.dataType);
    driver.open(port++);
  }
  for (std::size_t i = 0; i < std::size(kRaised); ++i) {
    driver.lines[i].send(kScan + "\r");
    const Event event = driver.event();
    EXPECT_EQ(event.source, driver.ids[i]);
    EXPECT_EQ(event.name, kRaised[i].*name) << i;
    EXPECT_EQ(event.data, kRaised[i].data) << i;
  }
}

TEST(SerialEvents, RussianNamesAndDataOfEachType) {
  SerialDriver driver;
  expectRaised(driver, &Raised::russian);
}

TEST(SerialEvents, EnglishNamesInAnEnglishProcess) {
  SerialDriver driver(u"InputDevice", rig::englishLibraryPath());
  expectRaised(driver, &Raised::english);
}

TEST(SerialEvents, TheProcessAndNotTheComponentChoosesTheLanguageOfNames) {
  SerialDriver english(u"InputDevice", rig::englishLibraryPath());
  SerialLine& line = english.plugIn(kUsb1);
  english.open(kUsb1);
  const auto nameOfAScan = [&] {
    line.send("1\r");
    return english.event().name;
  };
  EXPECT_EQ(nameOfAScan(), u"Barcode");
  // A component that was set to Russian switches the whole process, on every SetLocale.
  rig::Driver other(u"CardReaderDevice", rig::englishLibraryPath());
  other.component.object().SetLocale(u"ru_RU");
  EXPECT_EQ(nameOfAScan(), u"Штрихкод");
  other.component.object().SetLocale(u"en_US");
  EXPECT_EQ(nameOfAScan(), u"Штрихкод");
  english.component.object().SetLocale(u"en_US");
  EXPECT_EQ(nameOfAScan(), u"Barcode");
  EXPECT_EQ(other.component.description()[0], u"Ostrak: Драйвер устройств ввода");
  EXPECT_EQ(english.component.description()[0], u"Ostrak: Input device driver");
  EXPECT_EQ(other.component.description()[2], english.component.description()[2]);
}

TEST(SerialEvents, AProcessThatStartsRussianStaysRussian) {
  SerialDriver driver;
  SerialLine& line = driver.plugIn(kUsb1);
  driver.component.object().SetLocale(u"en_US");
  driver.open(kUsb1);
  line.send("1\r");
  EXPECT_EQ(driver.event().name, u"Штрихкод");
}

// One scan in the forms of the data types.
struct Data {
  std::string bytes;
  std::u16string text;
  std::u16string readable;
};

const Data kData[] = {
    {"4600051000057", u"4600051000057", u"4600051000057"},
    {"Привет", u"Привет", u"(208159209128208184208178208181209130)"},
    {"\x02 \x7F\n", u"\x02 \x7F\n", u"(002032127010)"},
    // A text ends at a zero; invalid UTF-8 is skipped.
    {std::string("12\0"
                 "34",
                 5),
     u"12", u"12(000)34"},
    {"1\xFF\x80"
     "2",
     u"12", u"12"},
    {"\xF0\x9F\x98\x80", u"\xF600", u"(240159152128)"},
};

TEST(SerialEvents, TheDataOfEachType) {
  // One device for each, without a suffix, so that every byte is data.
  std::deque<SerialDriver> drivers(3);
  for (std::int32_t type = 0; type < 3; ++type) {
    SerialDriver& driver = drivers[static_cast<std::size_t>(type)];
    driver.plugIn(kUsb1 + type, LineSetting::kRaw);
    driver.component.setParameter(u"Suffix", -1);
    driver.component.setParameter(u"OutputDataType", type);
    driver.open(kUsb1 + type);
  }
  for (const Data& data : kData) {
    for (SerialDriver& driver : drivers) driver.lines[0].send(data.bytes);
    EXPECT_EQ(drivers[0].event().data, data.text);
    EXPECT_EQ(drivers[1].event().data, data.readable);
    EXPECT_EQ(drivers[2].event().data, base64(data.bytes));
  }
}

TEST(SerialEvents, AnyCodePageDeliversTheSameBytes) {
  SerialDriver driver;
  const char16_t* const codePages[] = {u"UTF-8", u"Windows-1251", u"no code page", u""};
  std::int32_t port = kUsb1;
  for (const char16_t* codePage : codePages) {
    driver.plugIn(port);
    driver.component.setParameter(u"COMEncoding", std::u16string(codePage));
    driver.component.setParameter(u"OutputDataType", rig::kDataBase64);
    driver.open(port++);
  }
  for (SerialLine& line : driver.lines) {
    line.send("\xCF\xF0 Ж\r");
    EXPECT_EQ(driver.event().data, base64("\xCF\xF0 Ж"));
  }
}

TEST(SerialEvents, IdentifiersCountTheOpeningsOfEachComponent) {
  SerialDriver scanner;
  SerialDriver reader(u"CardReaderDevice");
  scanner.plugIn(kUsb1);
  reader.plugIn(130);
  EXPECT_EQ(scanner.open(kUsb1), u"InputDevice#1");
  EXPECT_EQ(reader.open(130), u"CardReaderDevice#1");
  EXPECT_TRUE(scanner.close(u"InputDevice#1"));
  EXPECT_EQ(scanner.open(kUsb1), u"InputDevice#2");
  // An identifier is known to its own component only.
  EXPECT_FALSE(reader.component.close(u"InputDevice#2"));
  EXPECT_FALSE(scanner.component.close(u"InputDevice#1"));
  EXPECT_FALSE(scanner.component.close(u"InputDevice#3"));
  EXPECT_FALSE(scanner.component.close(u""));
  reader.lines[0].send("card\r");
  const Event event = reader.event();
  // The class does not choose the equipment; the parameter does.
  EXPECT_EQ(event.name, u"Штрихкод");
  EXPECT_EQ(event.source, u"CardReaderDevice#1");
  EXPECT_EQ(event.data, u"card");
}

TEST(SerialEvents, EightPortsAtFullSpeed) {
  constexpr int kPorts = 8;
  constexpr int kScans = 400;
  SerialDriver scanner;
  SerialDriver reader(u"CardReaderDevice");
  SerialDriver* const drivers[] = {&scanner, &reader};
  std::vector<std::jthread> scanners;
  for (int number = 0; number < kPorts; ++number) {
    SerialDriver& driver = *drivers[number % 2];
    SerialLine& line = driver.plugIn(kUsb1 + number);
    const std::u16string id = driver.open(kUsb1 + number);
    scanners.emplace_back([&line, name = std::string(id.begin(), id.end())] {
      for (int scan = 0; scan < kScans; ++scan) {
        line.send(name + " scan " + std::to_string(scan) + "\r");
      }
    });
  }
  std::map<std::string, int> next;  // the next scan expected from each source
  for (SerialDriver* driver : drivers) {
    for (int i = 0; i < kScans * kPorts / 2; ++i) {
      const Event event = driver->event();
      const std::string source(event.source.begin(), event.source.end());
      ASSERT_EQ(std::string(event.data.begin(), event.data.end()),
                source + " scan " + std::to_string(next[source]++));
    }
  }
  scanners.clear();
  EXPECT_EQ(next.size(), static_cast<std::size_t>(kPorts));
  for (SerialDriver* driver : drivers) {
    driver->closeAll();
    EXPECT_EQ(driver->component.events().take(std::chrono::milliseconds(0)), std::nullopt);
  }
}

}  // namespace
