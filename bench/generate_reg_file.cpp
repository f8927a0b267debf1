// Writes a REGEDIT4 file of `keys` keys with `perKey` values each, text, hex and dword values in
// turn, in the forms the import reads: the input of the import benchmark.
//
//   generate_reg_file OUT.reg [keys=1000] [perKey=10] [root=HKEY_CURRENT_USER\Software\QuorvaneBench]
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

int main(int argc, char** argv) {
  if (argc < 2) {
    std::fprintf(stderr, "usage: %s OUT.reg [keys] [perKey] [root]\n", argv[0]);
    return 2;
  }
  const long keys = argc > 2 ? std::strtol(argv[2], nullptr, 10) : 1000;
  const long perKey = argc > 3 ? std::strtol(argv[3], nullptr, 10) : 10;
  const std::string root = argc > 4 ? argv[4] : "HKEY_CURRENT_USER\\Software\\QuorvaneBench";

  std::ofstream out(argv[1], std::ios::binary);
  out << "REGEDIT4\r\n\r\n";
  char line[256];
  for (long k = 0; k < keys; ++k) {
    std::snprintf(line, sizeof line, "[%s\\Key%04ld]\r\n", root.c_str(), k);
    out << line;
    for (long v = 0; v < perKey; ++v) {
      const long n = k * perKey + v;
      switch (v % 3) {
        case 0:
          std::snprintf(line, sizeof line, "\"Text%02ld\"=\"value number %ld of key %ld\"\r\n", v, n, k);
          break;
        case 1:
          std::snprintf(line, sizeof line, "\"Bytes%02ld\"=hex:%02lx,%02lx,%02lx,%02lx,00,ff\r\n", v,
                        n & 0xFF, (n >> 8) & 0xFF, k & 0xFF, v & 0xFF);
          break;
        default:
          std::snprintf(line, sizeof line, "\"Number%02ld\"=dword:%08lx\r\n", v, n * 7919);
          break;
      }
      out << line;
    }
    out << "\r\n";
  }
  return out ? 0 : 1;
}
