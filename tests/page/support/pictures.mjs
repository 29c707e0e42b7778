// Pictures that tests pick, and what they look at in those that the page makes.

const halves = async ([width, height, type]) => {
  const canvas = new OffscreenCanvas(width, height);
  const drawing = canvas.getContext('2d');
  ['rgb(255,0,0)', 'rgb(0,0,255)'].forEach((color, index) => {
    drawing.fillStyle = color;
    drawing.fillRect((index * width) / 2, 0, width / 2, height);
  });
  const bytes = new Uint8Array(await (await canvas.convertToBlob({type, quality: 1})).arrayBuffer());
  return Array.from(bytes);
};

/** A picture whose left half is red and whose right half is blue. */
export async function redAndBlue(page, width, height, type = 'image/png') {
  return Buffer.from(await page.evaluate(halves, [width, height, type]));
}

/** A square JPEG file that compresses about as badly as a photograph does. */
export async function noisyPhotograph(page, side) {
  return Buffer.from(await page.evaluate(async length => {
    const canvas = new OffscreenCanvas(length, length);
    const drawing = canvas.getContext('2d');
    const picture = drawing.createImageData(length, length);
    for (let at = 0; at < picture.data.length; at += 4) {
      const value = 128 + 90 * Math.sin(at / 90_000) + 24 * Math.random();
      picture.data.set([value, 255 - value, (at / 4) % 200, 255], at);
    }
    drawing.putImageData(picture, 0, 0);
    const reader = new FileReader();
    reader.readAsDataURL(await canvas.convertToBlob({type: 'image/jpeg', quality: 0.85}));
    await new Promise(done => (reader.onload = done));
    return reader.result.split(',')[1];
  }, side), 'base64');
}

/** The same JPEG file, saying that it was taken with the camera on its side: its left is the top. */
export function onItsSide(jpeg) {
  const tiff = Buffer.from('49492a0008000000' + '0100' + '1201' + '0300' + '01000000' + '06000000' + '00000000', 'hex');
  const body = Buffer.concat([Buffer.from('Exif\0\0', 'latin1'), tiff]);
  const head = Buffer.from([0xff, 0xe1, 0, 0]);
  head.writeUInt16BE(body.length + 2, 2);
  return Buffer.concat([jpeg.subarray(0, 2), head, body, jpeg.subarray(2)]);
}

/** Width, height and the colours of some points (as parts of the whole) of an image file. */
export function lookAt(page, file, points) {
  return page.evaluate(async ([bytes, places]) => {
    const bitmap = await createImageBitmap(new Blob([new Uint8Array(bytes)]));
    const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
    const drawing = canvas.getContext('2d');
    drawing.drawImage(bitmap, 0, 0);
    const colors = places.map(([x, y]) => {
      const [red, , blue] = drawing.getImageData(x * bitmap.width, y * bitmap.height, 1, 1).data;
      return red > 200 && blue < 60 ? 'red' : blue > 200 && red < 60 ? 'blue' : `${red}/${blue}`;
    });
    return {width: bitmap.width, height: bitmap.height, colors};
  }, [Array.from(file), points]);
}
