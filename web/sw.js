// Copyright the Seedforest authors
// SPDX-License-Identifier: Apache-2.0

// Keeps the page for times without a network: what comes over it is taken and kept, and what was
// kept is used where nothing comes. scripts/web fills in the list of files.

const cacheName = "seedforest";
const files = ["./" /* FILES */];

self.addEventListener("install", (event) => {
  self.skipWaiting();
  event.waitUntil(caches.open(cacheName).then((cache) => cache.addAll(files)));
});

self.addEventListener("activate", (event) => event.waitUntil(self.clients.claim()));

async function answer(request) {
  const cache = await caches.open(cacheName);
  try {
    const fresh = await fetch(request);
    if (fresh.ok) cache.put(request, fresh.clone());
    return fresh;
  } catch (error) {
    const kept = await cache.match(request, { ignoreSearch: true });
    if (kept) return kept;
    throw error;
  }
}

self.addEventListener("fetch", (event) => {
  const isOwn = new URL(event.request.url).origin === location.origin;
  if (isOwn && event.request.method === "GET") event.respondWith(answer(event.request));
});
