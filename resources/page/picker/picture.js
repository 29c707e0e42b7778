// Pictures as the browser reads them, and the PNG files that are made of them.

const longestSide = 3000;

/** A file as a picture that stands the right way up; null when it is none. Whoever got it calls its `close`. */
export async function readPicture(file) {
  const image = document.createElement('img');
  image.alt = '';
  image.src = URL.createObjectURL(file);
  const close = () => URL.revokeObjectURL(image.src);
  try {
    await image.decode();
    const {naturalWidth: width, naturalHeight: height} = image;
    if (width > 0 && height > 0) return {image, width, height, close};
  } catch {
    // Said by the null.
  }
  close();
  return null;
}

/** A part of a picture as a PNG file, scaled down where it is large. */
export function makePNG({image}, {x, y, width, height}) {
  const scale = Math.min(1, longestSide / Math.max(width, height));
  const canvas = document.createElement('canvas');
  canvas.width = Math.max(1, Math.round(width * scale));
  canvas.height = Math.max(1, Math.round(height * scale));
  const drawing = canvas.getContext('2d');
  drawing.imageSmoothingQuality = 'high';
  drawing.drawImage(image, x, y, width, height, 0, 0, canvas.width, canvas.height);
  return new Promise((done, failed) => {
    canvas.toBlob(blob => (blob ? done(blob) : failed(new Error('no room for the picture'))), 'image/png');
  });
}
