#ifndef MillMeshWriter_h
#define MillMeshWriter_h

#include <cstddef>
#include <string>

#include "MillOutputFile.h"
#include "ZULMRSSurfaceMesh.h"

enum class MillMeshFormat { Stl, Obj, Ply };

/// The format by the ending of a file name, in upper or lower case. Throws MillError with the subject "-o".
MillMeshFormat MillMeshFormatOf(const std::string& path);

/// Writes a mesh: binary STL (single precision, triangles that it makes degenerate left out, which leaves the
/// mesh closed), OBJ as text or binary little-endian PLY (double precision both). Returns the number of
/// triangles written.
std::size_t MillWriteMesh(const ZULMRSSurfaceMesh& mesh, MillMeshFormat format, MillOutputFile& file);

#endif
