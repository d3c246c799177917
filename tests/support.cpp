#include "support.h"
#include "ift/core/detail/rootsTools.h"
#include "image/detail/imageTools.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

// Memory that cannot be had is tested too; AddressSanitizer would end the process there.
extern "C" const char *__asan_default_options() {
  return "allocator_may_return_null=1";
}

imImagePtr makeImage(const Matrix &rows, char type) {
  return makeBands({rows}, type);
}

imImagePtr makeBands(const std::vector<Matrix> &bands, char type) {
  const Matrix &first = bands.front();
  imImagePtr image = blank(static_cast<int>(first[0].size()), static_cast<int>(first.size()),
                           static_cast<int>(bands.size()), type);
  for (int b = 0; b < image->nbands; ++b)
    for (int p = 0; p < image->npixels; ++p)
      image->band[b][p] = bands[b].at(p / image->ncols).at(p % image->ncols);
  image->maxValue = seedforest::detail::largestValue(image.get(), 0);
  return image;
}

imImagePtr blank(int ncols, int nrows, int nbands, char type) {
  return imImagePtr(imCreateImage(nbands, type, ncols, nrows));
}

imImagePtr blankLike(const imImagePtr &image, int nbands, char type) {
  return blank(image->ncols, image->nrows, nbands, type);
}

Matrix bandOf(const imImage *image, int b) {
  Matrix rows;
  for (int y = 0; y < image->nrows; ++y) {
    const int *row = image->band[b] + image->row[y];
    rows.emplace_back(row, row + image->ncols);
  }
  return rows;
}

Matrix bandOf(const imImagePtr &image, int b) {
  return bandOf(image.get(), b);
}

void expectImage(const char *what, imImage *image, char type, int maxValue,
                 const std::vector<Matrix> &bands) {
  SCOPED_TRACE(what);
  const imImagePtr owned(image);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->type, type);
  EXPECT_EQ(image->maxValue, maxValue);
  ASSERT_EQ(image->nbands, static_cast<int>(bands.size()));
  for (int b = 0; b < image->nbands; ++b)
    EXPECT_EQ(bandOf(image, b), bands[b]) << "band " << b;
}

int pick(std::mt19937 &random, int lo, int hi) {
  return std::uniform_int_distribution(lo, hi)(random);
}

imImagePtr randomImage(std::mt19937 &random, int nbands, char type, int ncols, int nrows, int lo,
                       int hi) {
  imImagePtr image = blank(ncols, nrows, nbands, type);
  for (int b = 0; b < nbands; ++b)
    std::generate_n(image->band[b], image->npixels, [&] { return pick(random, lo, hi); });
  image->maxValue = hi;
  return image;
}

ifRootsPtr makeRoots(const std::vector<Root> &roots) {
  ifRootsPtr made = seedforest::detail::createRoots(static_cast<int>(roots.size()));
  for (int i = 0; i < made->n; ++i) {
    made->pixel[i] = roots[i].pixel;
    made->label[i] = roots[i].label;
    made->value[i] = roots[i].value;
  }
  return made;
}

std::vector<Root> listOf(const ifRoots *roots) {
  std::vector<Root> list;
  for (int i = 0; i < roots->n; ++i)
    list.push_back({roots->pixel[i], roots->label[i], roots->value[i]});
  return list;
}

TemporaryFolder::TemporaryFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "seedforest-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr)
    throw std::runtime_error("no temporary folder");
  folder_ = name;
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(folder_, ignored);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view bytes) const {
  std::ofstream(path(name), std::ios::binary) << bytes;
  return path(name);
}

std::vector<std::string> TemporaryFolder::names() const {
  std::vector<std::string> names;
  for (const auto &entry : std::filesystem::directory_iterator(folder_))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

bool Pieces::refill() {
  const std::string_view piece = whole_.substr(std::min(asked_, whole_.size()), size_);
  at = piece.data();
  end = at + piece.size();
  asked_ += piece.empty() ? 1 : piece.size();
  return !piece.empty();
}

std::string contentsOf(const std::string &path) {
  std::ifstream file(path, std::ios::binary);
  if (!file)
    return "(no such file)";
  return {std::istreambuf_iterator<char>(file), {}};
}
