// Synthetic chromatograms of a clean sequence (upper-case letters), written through an open
// FileWriter: SCF 2.00 by default, a minimal ABIF file with -abi. Both draw the same trace of
// 12 samples per base; neither opens or closes the file.
#ifndef SYNTHCALL_APP_CHROMAT_H
#define SYNTHCALL_APP_CHROMAT_H

#include "toolkit/fileio.h"

void WriteScf(FileWriter& file, const char* bases, long n);
void WriteAbif(FileWriter& file, const char* bases, long n);

#endif  // SYNTHCALL_APP_CHROMAT_H
