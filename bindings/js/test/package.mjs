// SPDX-License-Identifier: Apache-2.0
// The package as it was built: its folder is the environment's ORLENTA_PACKAGE.
import { pathToFileURL } from "node:url";

const url = new URL("orlenta.mjs", pathToFileURL(`${process.env.ORLENTA_PACKAGE}/`));
export const orlenta = await import(url.href);
export const loadBuilt = (regions) => orlenta.load({ regions });
