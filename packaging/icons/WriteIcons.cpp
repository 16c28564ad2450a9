#include <QImage>
#include <QString>
#include <cstdio>
#include <fstream>
#include <string>

#include "KestrelApp/AppIcon.h"

// Draws the application's icon into the files of this folder. They are kept with the sources, since
// packagers need them without running what they build.
//   kestrel-icons FOLDER

namespace {

bool writeText(const std::string& path, const std::string& text) {
  std::ofstream file(path, std::ios::binary);
  file << text;
  return static_cast<bool>(file.flush());
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: kestrel-icons FOLDER\n");
    return 2;
  }
  const std::string folder = std::string(argv[1]) + "/";
  bool isWritten = writeText(folder + "kestrel.svg", kestrel::appIconSvg()) &&
                   writeText(folder + "kestrel-symbolic.svg", kestrel::appIconSymbolicSvg());
  for (const int side : kestrel::kAppIconSides) {
    const std::string name = folder + "kestrel-" + std::to_string(side) + ".png";
    isWritten = isWritten && kestrel::drawAppIcon(side).save(QString::fromStdString(name));
  }
  if (!isWritten) std::fprintf(stderr, "kestrel-icons: cannot write into %s\n", argv[1]);
  return isWritten ? 0 : 1;
}
