// three.mjs FACETBENCH MAKE_SAMPLE MODULES: has three's loaders read the sample's modern outputs as a web page does.
// Every textured material must arrive with a picture that decodes. Exits with 77 where three is not installed.

import { execFileSync } from "node:child_process";
import { existsSync, mkdtempSync, readFileSync, rmSync } from "node:fs";
import { createServer } from "node:http";
import { tmpdir } from "node:os";
import { join } from "node:path";
import { pathToFileURL } from "node:url";
import { inflateSync } from "node:zlib";

const [facetbench, makeSample, modules] = process.argv.slice(2);
if (!existsSync(join(modules, "three"))) {
  console.log("three: skipped, npm's package three is not installed");
  process.exit(77);
}
const load = name => import(pathToFileURL(join(modules, "three", "examples", "jsm", "loaders", `${name}.js`)));
const [{ OBJLoader }, { MTLLoader }, { GLTFLoader }] = await Promise.all(["OBJLoader", "MTLLoader", "GLTFLoader"].map(load));

/** The sides of a PNG picture; throws where it is none or its pixels cannot be unpacked. */
function sizeOfPng(bytes) {
  if (bytes.toString("latin1", 1, 4) !== "PNG") throw Error("no PNG file");
  const pieces = [];
  for (let at = 8, length; at < bytes.length; at += 12 + length) {
    length = bytes.readUInt32BE(at);
    if (bytes.toString("latin1", at + 4, at + 8) === "IDAT") pieces.push(bytes.subarray(at + 8, at + 8 + length));
  }
  inflateSync(Buffer.concat(pieces));
  return { width: bytes.readUInt32BE(16), height: bytes.readUInt32BE(20) };
}

// What the loaders need of a browser: an image that fetches its address.
const pending = [];
globalThis.self = globalThis;
globalThis.ProgressEvent = class {};
globalThis.document = {
  createElementNS: () => ({
    addEventListener(event, call) { this[`on${event}`] = call; },
    removeEventListener() {},
    set src(address) {
      const bytes = fetch(address).then(answer => answer.arrayBuffer());
      pending.push(bytes.then(all => sizeOfPng(Buffer.from(all))).then(
        size => this.onload.call(Object.assign(this, size)),
        error => { console.log(`three: ${address}: ${error.message}`); this.onerror.call(this, error); }));
    },
  }),
};

const readers = {
  obj: async base => new OBJLoader().setMaterials(await new MTLLoader().loadAsync(`${base}.mtl`)).loadAsync(`${base}.obj`),
  glb: async base => (await new GLTFLoader().loadAsync(`${base}.glb`)).scene,
  gltf: async base => (await new GLTFLoader().loadAsync(`${base}.gltf`)).scene,
};

const folder = mkdtempSync(join(tmpdir(), "three-"));
const run = (program, ...words) => execFileSync(program, words, { cwd: folder, encoding: "utf8" });
const server = createServer((request, answer) => {
  const path = join(folder, decodeURIComponent(request.url));
  answer.writeHead(existsSync(path) ? 200 : 404).end(existsSync(path) ? readFileSync(path) : "");
});
try {
  run(makeSample, folder);
  const info = JSON.parse(run(facetbench, "info", "--json", "lighthouse.vxm"));
  const textures = info.materials.filter(each => each.hasTexture).length;
  const wanted = `${textures} textured materials, ${info.totalIndices / 3} triangles`;
  run(facetbench, "convert", "lighthouse.vxm", "--style", "modern", "--to", "obj,glb,gltf", "--out", "out dir", "-q");
  await new Promise(ready => server.listen(0, "127.0.0.1", ready));
  for (const [format, read] of Object.entries(readers)) {
    const scene = await read(`http://127.0.0.1:${server.address().port}/out%20dir/lighthouse`);
    await Promise.all(pending);
    const textured = new Set();
    let triangles = 0;
    scene.traverse(({ isMesh, material, geometry }) => {
      if (!isMesh) return;
      triangles += (geometry.index ?? geometry.attributes.position).count / 3;
      for (const each of [material].flat()) if (each.map?.image?.width > 0) textured.add(each.name);
    });
    const found = `${textured.size} textured materials, ${triangles} triangles`;
    console.log(`three: ${format}: ${found}`);
    if (found !== wanted) throw Error(`expected ${wanted}`);
  }
} catch (error) {
  console.log(`three: ${error.message}`);
  process.exitCode = 1;
}
server.closeAllConnections();
server.close();
rmSync(folder, { recursive: true });
