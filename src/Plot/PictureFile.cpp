#include "Plot/PictureFile.h"

#include "FileHandler/Syntax/SafeFile.h"
#include "Plot/Gnuplot.h"
#include "Plot/GnuplotScript.h"
#include "Plot/TextPicture.h"
#include "Shared/Text.h"

namespace kiln::PictureFile {

namespace {

using FileTools::Writer;

constexpr std::size_t kTextWidth = 80;

void WriteScript(Writer& writer, const TPicture& picture) {
  writer.WriteText(GnuplotScript(picture, TPictureFormat::kSvg));
}

void WriteCharacters(Writer& writer, const TPicture& picture) {
  writer.WriteText(DrawText(picture, kTextWidth, TCharacters::kUnicode));
}

template <TPictureFormat format>
void WriteDrawing(Writer& writer, const TPicture& picture) {
  RunGnuplot(GnuplotScript(picture, format),
             [&](std::string_view piece) { writer.WriteText(piece); });
}

struct TEnding {
  std::string_view ending;
  void (*write)(Writer& writer, const TPicture& picture);
};

constexpr TEnding kKnown[] = {{".svg", WriteDrawing<TPictureFormat::kSvg>},
                              {".png", WriteDrawing<TPictureFormat::kPng>},
                              {".pdf", WriteDrawing<TPictureFormat::kPdf>},
                              {".txt", WriteCharacters},
                              {".gp", WriteScript}};

const TEnding* EndingOf(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  return dot == path.npos ? nullptr : FindNoCase(kKnown, path.substr(dot), &TEnding::ending);
}

}  // namespace

bool HasKnownEnding(std::string_view path) {
  return EndingOf(path) != nullptr;
}

void Save(const std::string& path, const TPicture& picture) {
  FileTools::SaveFile(path, [&](Writer& writer) { EndingOf(path)->write(writer, picture); });
}

}  // namespace kiln::PictureFile
