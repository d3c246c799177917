// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// The settings: what can be chosen, what it starts as, and what it means to the libraries.

/** The methods, in the order of the page. `number` is the libraries' own. */
export const methods = {
  markers: {
    number: 8,
    name: "markers: peaks that stand out",
    about: "A seed set in each bright spot that stands out by more than h grey levels.",
    canSmooth: true,
    canHaveGround: true,
  },
  split: {
    number: 9,
    name: "split: objects that touch",
    about: "The parts of bright objects, apart at necks that are more than h pixels narrower in half-width.",
    canSmooth: true,
    canHaveGround: true,
    hasLimit: true,
  },
  cells: {
    number: 6,
    name: "cells",
    about: "Cells (label 2) and the lines between them (1), after smoothing in steps. Grey images.",
    canSmooth: true,
  },
  regMax: {
    number: 1,
    name: "regMax: regional maxima",
    about: "Plateaus that touch no brighter pixel, of values in a range.",
    canSmooth: true,
    canHaveGround: true,
  },
  regMin: {
    number: 2,
    name: "regMin: regional minima",
    about: "Plateaus that touch no darker pixel, of values in a range.",
    canSmooth: true,
    canHaveGround: true,
  },
  dt: {
    number: 3,
    name: "dt: borders of shapes",
    about: "The border pixels of what is above 0, numbered along each contour.",
    canSmooth: true,
  },
  frame: {
    number: 4,
    name: "frame",
    about: "The pixels of the image's frame, with one label or one each.",
  },
  labels: {
    number: 5,
    name: "labels",
    about: "Every pixel above 0, with its value as label.",
    canSmooth: true,
  },
  join: { number: 7, name: "join: two roots files", about: "All seeds of two roots files." },
  drawn: {
    number: 0,
    name: "only what I draw",
    about: "Choose “Draw seeds” and put a stroke on each object, and one on the background.",
  },
};

export const reliefs = ["image", "negative", "gradient"];
export const costs = ["max", "sum", "local"];

/** What an image starts with. */
export function defaultsFor(facts) {
  const range = facts.largest - facts.least;
  return {
    method: "markers",
    h: Math.round(range / 8),
    neck: 1,
    steps: 4,
    low: Math.round(facts.least + range / 2),
    high: facts.largest,
    uniform: true,
    label: 1,
    smooth: 2,
    ground: true,
    auto: true,
    limit: facts.otsu,
    relief: "gradient",
    connectivity: "8",
    cost: "max",
    only: "all",
    above: facts.otsu,
    minArea: 0,
    merge: false,
    similar: 10,
    lines: false,
    strokes: [],
  };
}

/** Which settings have an effect. */
export function inForce(s) {
  const method = methods[s.method];
  const hasGround = Boolean(method.canHaveGround) && s.ground;
  return {
    smooth: method.canSmooth ? s.smooth : 0,
    hasGround,
    limit: (method.hasLimit || hasGround) && !s.auto ? s.limit : null,
  };
}

/** A method's one or two numbers. */
export function parametersOf(s) {
  switch (s.method) {
    case "markers":
      return [s.h];
    case "split":
      return [s.neck];
    case "cells":
      return [s.steps];
    case "regMax":
    case "regMin":
      return [s.low, s.high];
    case "frame":
      return s.uniform ? [1, s.label] : [0];
    default:
      return [];
  }
}

/** The settings as the libraries take them. `files` counts the roots files that were chosen. */
export function requestFor(s, files) {
  const [a = 0, b = 0] = parametersOf(s);
  return {
    seeds: {
      method: methods[s.method].number,
      a,
      b,
      ...inForce(s),
      files: s.method === "join" ? files : 0,
    },
    strokes: s.strokes,
    regions: {
      relief: reliefs.indexOf(s.relief),
      connectivity: Number(s.connectivity),
      cost: costs.indexOf(s.cost),
      only: ["all", "auto", "above"].indexOf(s.only),
      above: s.above,
      minArea: s.minArea,
      similar: s.merge ? s.similar : null,
      lines: s.lines,
    },
  };
}
