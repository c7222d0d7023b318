#include <array>

#include "export/export.h"
#include "export/mesh_text.h"
#include "export/text.h"

// 3ds Max ASCII scene export: one multi-material with the model's materials as its parts, and an object for
// each mesh. Values stand as the model holds them. Texture vertices are written one for each corner.

namespace facet {

namespace {

constexpr std::string_view sceneHead = R"(*3DSMAX_ASCIIEXPORT200
*COMMENT "AsciiExport Version 2,00"
*SCENE {
	*SCENE_FILENAME "model.vxm"
	*SCENE_FIRSTFRAME 0
	*SCENE_LASTFRAME 100
	*SCENE_FRAMESPEED 30
	*SCENE_TICKSPERFRAME 160
	*SCENE_BACKGROUND_STATIC 0.0000 0.0000 0.0000
	*SCENE_AMBIENT_STATIC 0.0000 0.0000 0.0000
}
*MATERIAL_LIST {
*MATERIAL_COUNT 1
	*MATERIAL 0 {
		*MATERIAL_NAME "01 - Default"
		*MATERIAL_CLASS "Standard"
		*MATERIAL_AMBIENT 0.5882 0.5882 0.5882
		*MATERIAL_DIFFUSE 0.5882 0.5882 0.5882
		*MATERIAL_SPECULAR 0.9000 0.9000 0.9000
		*MATERIAL_SHINE 0.1000
		*MATERIAL_SHINESTRENGTH 0.0000
		*MATERIAL_TRANSPARENCY 0.0000
		*MATERIAL_WIRESIZE 1.0000
		*MATERIAL_SHADING Blinn
		*MATERIAL_XP_FALLOFF 0.0000
		*MATERIAL_SELFILLUM 0.0000
		*MATERIAL_FALLOFF In
		*MATERIAL_XP_TYPE Filter
)";

/// Between a sub-material's name and the number of its map.
constexpr std::string_view subMaterialColors = R"(
			*MATERIAL_CLASS "Standard"
			*MATERIAL_AMBIENT 0.5880 0.5880 0.5880
			*MATERIAL_DIFFUSE 0.5880 0.5880 0.5880
			*MATERIAL_SPECULAR 0.9000 0.9000 0.9000
			*MATERIAL_SHINE 0.1000
			*MATERIAL_SHINESTRENGTH 0.0000
			*MATERIAL_TRANSPARENCY 0.0000
			*MATERIAL_WIRESIZE 1.0000
			*MATERIAL_SHADING Blinn
			*MATERIAL_XP_FALLOFF 0.0000
			*MATERIAL_SELFILLUM 0.0000
			*MATERIAL_FALLOFF In
			*MATERIAL_XP_TYPE Filter
*MAP_DIFFUSE {
				*MAP_NAME "Map #)";

constexpr std::string_view mapHead = R"("
				*MAP_CLASS "Bitmap"
				*MAP_SUBNO 1
				*MAP_AMOUNT 1.0000
				*BITMAP ")";

constexpr std::string_view mapTail = R"("
				*MAP_TYPE Screen
				*UVW_U_OFFSET 0.0000
				*UVW_V_OFFSET 0.0000
				*UVW_U_TILING 1.0000
				*UVW_V_TILING 1.0000
				*UVW_ANGLE 0.0000
				*UVW_BLUR 1.0000
				*UVW_BLUR_OFFSET 0.0000
				*UVW_NOUSE_AMT 1.0000
				*UVW_NOISE_SIZE 1.0000
				*UVW_NOISE_LEVEL 1
				*UVW_NOISE_PHASE 0.0000
				*BITMAP_FILTER Pyramidal
			}
		}
)";

constexpr std::string_view identityTransform = R"(		*INHERIT_POS 0 0 0
		*INHERIT_ROT 0 0 0
		*INHERIT_SCL 0 0 0
		*TM_ROW0 1.0000 0.0000 0.0000
		*TM_ROW1 0.0000 1.0000 0.0000
		*TM_ROW2 0.0000 0.0000 1.0000
		*TM_ROW3 0.0000 0.0000 0.0000
		*TM_POS 0.0000 0.0000 0.0000
		*TM_ROTAXIS 0.0000 0.0000 0.0000
		*TM_ROTANGLE 0.0000
		*TM_SCALE 1.0000 1.0000 1.0000
		*TM_SCALEAXIS 0.0000 0.0000 0.0000
		*TM_SCALEAXISANG 0.0000
	}
)";

constexpr std::string_view objectTail = R"(		}
	}
	*PROP_MOTIONBLUR 0
	*PROP_CASTSHADOW 1
	*PROP_RECVSHADOW 1
	*WIREFRAME_COLOR 0.5000 0.5000 0.5000
}
)";

void writeSceneHead(const Model& model, Output& out) {
  TextBlocks text(out);
  const auto materials = ownMaterials(model);
  text.put(sceneHead, "\t\t*NUMSUBMTLS ", materials.size(), '\n');
  for (size_t i = 0; i < materials.size(); ++i) {
    text.put("\t\t*SUBMATERIAL ", i, " {\n\t\t\t*MATERIAL_NAME \"Material #", i, '"');
    text.put(subMaterialColors, i, mapHead, materials[i].textureName, mapTail);
  }
  text.put("\t}\n}\n");
  text.finish();
}

void putObjectHead(const MeshRef& mesh, TextBuffer& text) {
  const Padded number{mesh.number, 4};
  text.put("*GEOMOBJECT {\n*NODE_NAME \"Object #", number, "\"\n\t*NODE_TM {\n\t\t*NODE_NAME \"Object #",
           number, "\"\n", identityTransform);
  text.put("\t*MESH {\n\t\t*TIMEVALUE 0\n\t\t*MESH_NUMVERTEX ", mesh.mesh.vertexCount, '\n');
  text.put("\t\t*MESH_NUMFACES ", triangleCount(mesh.mesh), "\n\t\t*MESH_VERTEX_LIST {\n");
}

void putVertices(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t i = first; i < end; ++i) {
    const Vertex& vertex = mesh.mesh.vertices[i];
    text.put("\t\t\t*MESH_VERTEX ", i, ' ', vertex.x, ' ', vertex.y, ' ', vertex.z, '\n');
  }
}

void putTextureVertices(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint32_t k = first; k < end; ++k) {
    const Vertex vertex = cornerAt(mesh.mesh, mesh.mesh.indices[k]).vertex;
    text.put("\t\t\t*MESH_TVERT ", k, ' ', vertex.u, ' ', vertex.v, " 0.000000\n");
  }
}

void putFaces(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  forTriangles(mesh.mesh, first, end, [&](uint32_t t, uint16_t a, uint16_t b, uint16_t c) {
    text.put("\t\t\t*MESH_FACE", t, ":A:", a, " B:", b, " C:", c,
             " AB:1 BC:1 CA:1 *MESH_SMOOTHING 1 *MESH_MTLID ", mesh.mesh.materialIndex, '\n');
  });
}

void putTextureFaces(const MeshRef&, uint32_t first, uint32_t end, TextBuffer& text) {
  for (uint64_t t = first; t < end; ++t)
    text.put("\t\t\t*MESH_TFACE ", t, ' ', 3 * t, ' ', 3 * t + 1, ' ', 3 * t + 2, '\n');
}

void putFaceNormals(const MeshRef& mesh, uint32_t first, uint32_t end, TextBuffer& text) {
  forTriangles(mesh.mesh, first, end, [&](uint32_t t, uint16_t a, uint16_t b, uint16_t c) {
    const Vector3 face = cornerAt(mesh.mesh, a).normal;
    text.put("\t\t\t*MESH_FACENORMAL ", t, ' ', face.x, ' ', face.y, ' ', face.z, '\n');
    for (const uint16_t index : {a, b, c}) {
      const Vector3 normal = cornerAt(mesh.mesh, index).normal;
      text.put("\t\t\t\t*MESH_VERTEXNORMAL ", index, ' ', normal.x, ' ', normal.y, ' ', normal.z, '\n');
    }
  });
}

// Each head closes the list before it.
constexpr std::array<MeshSection, 6> sections{{
    {putObjectHead, vertexCount, putVertices},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("\t\t}\n\t\t*MESH_NUMTVERTEX ", mesh.mesh.indexCount, "\n\t\t*MESH_TVERTLIST {\n");
     },
     indexCount, putTextureVertices},
    {[](const MeshRef&, TextBuffer& text) { text.put("\t\t}\n\t\t*MESH_FACE_LIST {\n"); }, triangleCount,
     putFaces},
    {[](const MeshRef& mesh, TextBuffer& text) {
       text.put("\t\t}\n\t\t*MESH_NUMTVFACES ", triangleCount(mesh.mesh), "\n*MESH_TFACELIST {\n");
     },
     triangleCount, putTextureFaces},
    {[](const MeshRef&, TextBuffer& text) {
       text.put("\t\t}\n\t\t*MESH_NUMCVERTEX 0\n\t\t*MESH_NORMALS {\n");
     },
     triangleCount, putFaceNormals},
    {[](const MeshRef&, TextBuffer& text) { text.put(objectTail); }, nullptr, nullptr},
}};

}  // namespace

void exportAse(Model& model, std::string_view, Output& out) {
  writeSceneHead(model, out);
  writeMeshSections(model, out, sections);
}

}  // namespace facet
