// Bullet's face clipper, one call for each plane, in the width that the module is built for.
#include <BulletCollision/NarrowPhaseCollision/btPolyhedralContactClipping.h>

#include "bench/clip_harness.h"

namespace {

using ulm::bench::ClipBatch;

struct Faces {
  std::vector<btVertexArray> sources;
  btVertexArray scratch[2];
  bool flat;
};

const btVertexArray& clipFace(Faces& faces, std::size_t index) {
  static const btVector3 kNormals[6] = {btVector3(-1, 0, 0), btVector3(1, 0, 0),
                                        btVector3(0, 1, 0),  btVector3(0, -1, 0),
                                        btVector3(0, 0, 1),  btVector3(0, 0, -1)};
  const btVertexArray* from = &faces.sources[index];
  for (int plane = 0; plane < (faces.flat ? 4 : 6); ++plane) {
    btVertexArray& to = faces.scratch[plane % 2];
    to.resizeNoInitialize(0);
    btPolyhedralContactClipping::clipFace(*from, to, kNormals[plane], -1);
    from = &to;
  }
  return *from;
}

}  // namespace

#define ULM_PEER_API extern "C" __attribute__((visibility("default")))

ULM_PEER_API void* peerMake(const ClipBatch& batch) {
  auto faces = std::make_unique<Faces>();
  faces->flat = batch.flat;
  for (const auto& shape : batch.shapes) {
    btVertexArray& face = faces->sources.emplace_back();
    for (const auto& [x, y, z, w] : shape) {
      face.push_back(btVector3(btScalar(x), btScalar(y), btScalar(z)));
    }
  }
  return faces.release();
}
ULM_PEER_API int peerClip(void* faces, std::size_t index) {
  return clipFace(*static_cast<Faces*>(faces), index).size();
}
ULM_PEER_API double peerArea(void* faces, std::size_t index) {
  const btVertexArray& face = clipFace(*static_cast<Faces*>(faces), index);
  return ulm::bench::areaOf(
      static_cast<std::size_t>(face.size()),
      [&](std::size_t i) { return face[static_cast<int>(i)].x(); },
      [&](std::size_t i) { return face[static_cast<int>(i)].y(); });
}
ULM_PEER_API void peerFree(void* faces) { delete static_cast<Faces*>(faces); }
