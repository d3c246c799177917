// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The histogram of the objects' areas. Classes are equally wide on a logarithmic scale, since areas
// often range from a few pixels to thousands.

const svg = "http://www.w3.org/2000/svg";
const classes = 24;

function element(name, attributes, text = "") {
  const node = document.createElementNS(svg, name);
  for (const [key, value] of Object.entries(attributes)) node.setAttribute(key, value);
  node.textContent = text;
  return node;
}

/** How many areas, given in order, are in each class, and the classes' bounds. */
function countsOf(areas) {
  const least = Math.log(areas[0]);
  const range = Math.log(areas.at(-1)) - least;
  const counts = new Array(classes).fill(0);
  for (const area of areas)
    counts[range === 0 ? 0 : Math.min(classes - 1, Math.floor(((Math.log(area) - least) / range) * classes))]++;
  const bound = (i) => Math.round(Math.exp(least + (range * i) / classes));
  return { counts, bound };
}

/** The median of numbers in order. */
export function median(sorted) {
  const middle = sorted.length >> 1;
  return sorted.length % 2 === 1 ? sorted[middle] : (sorted[middle - 1] + sorted[middle]) / 2;
}

/** Draws areas, given in order, into a place of the page, and says them in its label. */
export function drawAreas(place, sample) {
  place.replaceChildren();
  if (sample.length === 0) {
    place.setAttribute("aria-label", "Histogram of areas: no objects");
    return;
  }
  const { counts, bound } = countsOf(sample);
  const most = Math.max(...counts);
  const [width, height, foot] = [264, 92, 18];
  const room = height - foot;
  const chart = element("svg", { viewBox: `0 0 ${width} ${height}` });
  const barWidth = width / classes;
  counts.forEach((count, i) => {
    const size = count === 0 ? 0 : Math.max(2, (count / most) * (room - 12));
    const bar = element("rect", { x: i * barWidth, y: room - size, width: barWidth - 1, height: size });
    bar.append(element("title", {}, `${bound(i)} to ${bound(i + 1)} pixels: ${count}`));
    chart.append(bar);
  });
  chart.append(element("line", { x1: 0, x2: width, y1: room + 0.5, y2: room + 0.5 }));
  for (const [i, anchor] of [[0, "start"], [classes / 2, "middle"], [classes, "end"]])
    chart.append(
      element("text", { x: i * barWidth, y: height - 4, "text-anchor": anchor }, bound(i).toLocaleString("en")),
    );
  chart.append(element("text", { x: 0, y: 9, class: "most" }, `highest bar: ${most}`));
  place.append(chart);
  place.setAttribute(
    "aria-label",
    `Histogram of areas: ${sample.length} objects of ${bound(0)} to ${bound(classes)} pixels, median ${median(sample)}`,
  );
}
